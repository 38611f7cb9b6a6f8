#include "exportable_utils/references/references.hpp"

#include <bit>

#include "python/operations.hpp"

namespace quorin::references {

namespace {

// The value of a number as a float64; nullopt if it is of a numpy type or not exact as a float64.
std::optional<double> exact_float(PyObject* value) noexcept {
    const ObjectNumber number = object_number_of(value);
    if (number.type == NumberType::none || number.scalar || number.beyond_exact()) return std::nullopt;
    return number.type == NumberType::real ? number.real : static_cast<double>(number.whole);
}

enum class Texts { read, skipped };

bool add(References& references, PyObject* reference, Texts texts) {
    const std::size_t index = references.objects.size();
    if (index == core::most_references) return false;
    const ReferenceBits bit = ReferenceBits{1} << index;
    if (is_exact_null(reference)) {
        references.null_bits |= bit;
    } else if (is_plain_text(reference)) {
        if (texts == Texts::read) {
            const std::optional<core::TextView> text = text_view_of(reference);
            if (!text || !references.texts.add(*text)) return false;
            references.text_bits.push_back(bit);
        }
    } else if (const std::optional<double> number = exact_float(reference)) {
        references.numbers.push_back({*number, bit});
    } else {
        return false;
    }
    references.objects.push_back(reference);
    return true;
}

bool add_all(References& references, Object list, Texts texts) {
    if (list.is_none()) return true;
    if (!PyList_CheckExact(list.get())) return false;
    const Py_ssize_t size = PyList_GET_SIZE(list.get());
    for (Py_ssize_t i = 0; i < size; ++i) {
        if (!add(references, PyList_GET_ITEM(list.get(), i), texts)) return false;
    }
    return true;
}

// References is large. Both functions construct the result directly in the return value; from an empty optional the
// compiler would fill all of it with zeros.
std::optional<References> read_list(Object list, Texts texts) {
    std::optional<References> references(std::in_place);
    if (!add_all(*references, list, texts)) references.reset();
    return references;
}

std::optional<References> read_set(Object set) {
    std::optional<References> references(std::in_place);
    const Ref members = iterate(set);
    while (const Ref member = next(members)) {
        if (add(*references, member.get(), Texts::read) && references->null_bits == 0) continue;
        references.reset();
        break;
    }
    return references;
}

}  // namespace

std::optional<References> read_references(Object list) {
    return read_list(list, Texts::read);
}

std::optional<References> read_references(Object list, Storage storage) {
    const bool texts = storage == Storage::objects || storage == Storage::fixed_text;
    return read_list(list, texts ? Texts::read : Texts::skipped);
}

std::optional<References> read_members(Object set) {
    if (!PyAnySet_CheckExact(set.get())) return std::nullopt;
    return read_set(set);
}

bool unchanged_by_asarray(const References& references) noexcept {
    bool texts = false;
    for (const Ref& reference : references.objects) {
        if (!is_plain_text(reference)) continue;
        texts = true;
        const std::optional<core::TextView> text = text_view_of(reference.get());
        if (!text || (text->size != 0 && core::unit(*text, text->size - 1) == 0)) return false;
    }
    return !texts || references.numbers.empty();
}

std::vector<Ref> held(const References& references, ReferenceBits bits) {
    std::vector<Ref> found;
    found.reserve(static_cast<std::size_t>(std::popcount(bits)));
    for (; bits != 0; bits &= bits - 1) {
        found.push_back(Ref::share(references.objects[static_cast<std::size_t>(std::countr_zero(bits))]));
    }
    return found;
}

Ref list_of_references(const References& references, ReferenceBits bits) {
    if (bits == 0) return list({});
    std::vector<Ref> found = held(references, bits);
    return list_holding(found);
}

}  // namespace quorin::references
