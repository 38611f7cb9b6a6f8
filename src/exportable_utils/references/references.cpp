#include "exportable_utils/references/references.hpp"

#include <bit>

#include "python/operations.hpp"

namespace quorin::references {

namespace {

// A plain number as a 64-bit float, where that is exact.
std::optional<double> plain_number(PyObject* value) noexcept {
    const ObjectNumber number = object_number_of(value);
    if (number.type == NumberType::none || number.scalar || number.beyond_exact()) return std::nullopt;
    return number.type == NumberType::real ? number.real : static_cast<double>(number.whole);
}

enum class Texts { looked_for, passed_over };

bool read(References& markers, PyObject* marker, Texts texts) {
    const std::size_t index = markers.objects.size();
    if (index == core::most_references) return false;
    const core::ReferenceBits bit = core::ReferenceBits{1} << index;
    if (is_exact_null(marker)) {
        markers.null_bits |= bit;
    } else if (is_plain_text(marker)) {
        if (texts == Texts::looked_for) {
            const std::optional<core::TextView> text = text_view_of(marker);
            if (!text || !markers.texts.add(*text)) return false;
            markers.text_bits.push_back(bit);
        }
    } else if (const std::optional<double> number = plain_number(marker)) {
        markers.numbers.push_back({*number, bit});
    } else {
        return false;
    }
    markers.objects.push_back(marker);
    return true;
}

bool read_all(References& markers, Object list, Texts texts) {
    if (list.is_none()) return true;
    if (!PyList_CheckExact(list.get())) return false;
    const Py_ssize_t size = PyList_GET_SIZE(list.get());
    for (Py_ssize_t i = 0; i < size; ++i) {
        if (!read(markers, PyList_GET_ITEM(list.get(), i), texts)) return false;
    }
    return true;
}

// The one thing that is returned is made where the caller has it: short columns are many, and this is not small.
std::optional<References> read_list(Object list, Texts texts) {
    std::optional<References> markers(std::in_place);
    if (!read_all(*markers, list, texts)) markers.reset();
    return markers;
}

}  // namespace

std::optional<References> read_references(Object list) {
    return read_list(list, Texts::looked_for);
}

std::optional<References> read_references(Object list, const ArrayColumn& column) {
    const bool texts = column.storage == Storage::objects || column.storage == Storage::fixed_text;
    return read_list(list, texts ? Texts::looked_for : Texts::passed_over);
}

std::optional<References> read_members(Object set) {
    if (!PyAnySet_CheckExact(set.get())) return std::nullopt;
    References markers;
    const Ref members = iterate(set);
    while (const Ref member = next(members)) {
        // The set keeps its members; nothing can take them out before the next foreign code runs.
        if (!read(markers, member.get(), Texts::looked_for)) return std::nullopt;
    }
    if (markers.null_bits != 0) return std::nullopt;
    return markers;
}

bool unchanged_by_asarray(const References& markers) noexcept {
    bool texts = false;
    for (PyObject* marker : markers.objects) {
        if (!is_plain_text(marker)) continue;
        texts = true;
        const std::optional<core::TextView> text = text_view_of(marker);
        if (!text || (text->size != 0 && core::unit(*text, text->size - 1) == 0)) return false;
    }
    return !texts || markers.numbers.empty();
}

std::vector<Ref> held(const References& markers, core::ReferenceBits bits) {
    std::vector<Ref> found;
    found.reserve(static_cast<std::size_t>(std::popcount(bits)));
    for (; bits != 0; bits &= bits - 1) {
        found.push_back(Ref::share(markers.objects[static_cast<std::size_t>(std::countr_zero(bits))]));
    }
    return found;
}

Ref list_of_references(const References& markers, core::ReferenceBits bits) {
    if (bits == 0) return list({});
    std::vector<Ref> found = held(markers, bits);
    return list_holding(found);
}

}  // namespace quorin::references
