#include "columns/markers.hpp"

#include "interp/operations.hpp"

namespace quorin::columns {

namespace {

// A plain number as a 64-bit float, where that is exact.
std::optional<double> plain_number(PyObject* value) noexcept {
    const ObjectNumber number = number_of(value);
    if (number.type == NumberType::none || number.scalar || number.beyond_exact()) return std::nullopt;
    return number.type == NumberType::real ? number.real : static_cast<double>(number.whole);
}

bool read(Markers& markers, PyObject* marker) {
    const std::size_t index = markers.objects.size();
    if (index == kernels::most_markers) return false;
    const std::uint32_t bit = 1U << index;
    if (is_plain_null(marker)) {
        markers.null_bits |= bit;
    } else if (is_plain_text(marker)) {
        const std::optional<kernels::TextView> text = view_of(marker);
        std::size_t texts = 0;
        while (texts < index && markers.text_bits[texts] != 0) ++texts;
        if (!text || !markers.texts.add(*text)) return false;
        markers.text_bits[texts] = bit;
    } else if (const std::optional<double> number = plain_number(marker)) {
        markers.numbers.push_back({*number, bit});
    } else {
        return false;
    }
    markers.objects.push_back(marker);
    return true;
}

}  // namespace

std::optional<Markers> plain_markers(Object list) {
    // Made where the caller has it: the short columns are many, and this is not small.
    std::optional<Markers> markers(std::in_place);
    if (list.is_none()) return markers;
    if (!PyList_CheckExact(list.get())) return std::nullopt;
    const Py_ssize_t size = PyList_GET_SIZE(list.get());
    markers->objects.reserve(static_cast<std::size_t>(size));
    for (Py_ssize_t i = 0; i < size; ++i) {
        if (!read(*markers, PyList_GET_ITEM(list.get(), i))) return std::nullopt;
    }
    return markers;
}

std::optional<Markers> plain_members(Object set) {
    if (!PyAnySet_CheckExact(set.get())) return std::nullopt;
    Markers markers;
    const Ref members = iterate(set);
    while (const Ref member = next(members)) {
        // The set keeps its members; nothing can take them out before the next foreign code runs.
        if (!read(markers, member.get())) return std::nullopt;
    }
    if (markers.null_bits != 0) return std::nullopt;
    return markers;
}

bool survive_asarray(const Markers& markers) noexcept {
    bool texts = false;
    for (PyObject* marker : markers.objects) {
        if (!is_plain_text(marker)) continue;
        texts = true;
        const std::optional<kernels::TextView> text = view_of(marker);
        if (!text || (text->length != 0 && kernels::character(*text, text->length - 1) == 0)) return false;
    }
    return !texts || markers.numbers.empty();
}

Ref markers_of(const Markers& markers, std::uint32_t bits) {
    Ref found = list({});
    for (std::size_t i = 0; i < markers.objects.size(); ++i) {
        if ((bits >> i & 1U) != 0) append(found, markers.objects[i]);
    }
    return found;
}

}  // namespace quorin::columns
