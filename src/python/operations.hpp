// The interpreter's operators and built-in types, on operands of any class. All of them may run foreign code, except
// concat() of exact texts and whole().
#pragma once

#include "python/ref.hpp"

#include <array>
#include <span>

namespace quorin {

bool truth(Object value, Where where = Where::current());

// compare() returns the result object; equal(), less() and greater() return its truth. There is no short cut for
// identical operands.
Ref compare(const Operand& left, int operation, const Operand& right, Where where = Where::current());
bool equal(const Operand& left, const Operand& right, Where where = Where::current());
bool less(const Operand& left, const Operand& right, Where where = Where::current());
bool greater(const Operand& left, const Operand& right, Where where = Where::current());

Ref add(const Operand& left, const Operand& right, Where where = Where::current());
Ref subtract(const Operand& left, const Operand& right, Where where = Where::current());
Ref multiply(const Operand& left, const Operand& right, Where where = Where::current());
Ref absolute(const Operand& value, Where where = Where::current());
Ref add_in_place(const Operand& left, const Operand& right, Where where = Where::current());
Ref either(const Operand& left, const Operand& right, Where where = Where::current());  // left | right
Ref inverted(const Operand& value, Where where = Where::current());                     // ~value

Ref item(Object container, const Operand& key, Where where = Where::current());
void set_item(Object container, const Operand& key, const Operand& value, Where where = Where::current());
void set_attr(Object owner, At name, const Operand& value);
bool contains(Object container, const Operand& value, Where where = Where::current());
Py_ssize_t length(Object value, Where where = Where::current());
// A number of rows or columns, converted through __index__ as range() does.
Py_ssize_t count(Object number, Where where = Where::current());

bool is_instance(Object value, Object type, Where where = Where::current());
bool is_text(Object value, Where where = Where::current());  // isinstance(value, str)

Ref text_of(Object value, Where where = Where::current());  // str(value)
Ref concat(Positional texts, Where where = Where::current());
Ref tuple(Positional items, Where where = Where::current());
Ref list(Positional items, Where where = Where::current());
Ref list_holding(std::span<Ref> items, Where where = Where::current());  // a new list; takes over the references
Ref dictionary(Where where = Where::current());                          // {}
Ref or_new_list(Object value);                                           // [] if value is None else value
Ref list_of(Object iterable, Where where = Where::current());            // list(iterable)
Ref set_of(Object iterable, Where where = Where::current());             // set(iterable)
Ref slice(const Operand& start, const Operand& stop, Where where = Where::current());
Ref whole(Py_ssize_t value, Where where = Where::current());  // an int
void append(Object list, Object value, Where where = Where::current());

// (first, second), not tracked by garbage collection: for elements that cannot be part of a reference cycle. The
// collector untracks such a tuple only when it first visits it.
Ref untracked_pair(Ref first, Ref second, Where where = Where::current());

// A list of known size. It is not tracked by garbage collection before finish(), so that foreign code cannot reach its
// null items through gc.get_objects().
class ListUnderConstruction {
  public:
    explicit ListUnderConstruction(std::size_t size, Where where = Where::current());
    void append(Ref item) noexcept { PyList_SET_ITEM(list_.get(), filled_++, item.give()); }
    // Call it when all items are appended.
    Ref finish() noexcept {
        PyObject_GC_Track(list_.get());
        return std::move(list_);
    }

  private:
    Ref list_;
    Py_ssize_t filled_ = 0;
};

// a, b, ... = value, with the interpreter's messages for a wrong number of values.
void unpack_into(Ref* targets, Py_ssize_t expected, Object value, Where where);
template <std::size_t N>
std::array<Ref, N> unpack(Object value, Where where = Where::current()) {
    std::array<Ref, N> targets;
    unpack_into(targets.data(), static_cast<Py_ssize_t>(N), value, where);
    return targets;
}

// next() returns an empty Ref at the end of the iteration.
Ref iterate(Object iterable, Where where = Where::current());
Ref next(Object iterator, Where where = Where::current());

}  // namespace quorin
