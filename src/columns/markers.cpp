#include "columns/markers.hpp"

#include "interp/operations.hpp"

namespace quorin::columns {

namespace {

bool is_plain_number(PyObject* value) noexcept {
    return PyLong_CheckExact(value) || PyFloat_CheckExact(value) || PyBool_Check(value);
}

bool read(Markers& markers, PyObject* marker, std::uint32_t& next_bit) {
    Markers::Entry entry{marker, is_plain_null(marker), 0};
    if (entry.null) {
        markers.null = true;
    } else if (PyUnicode_CheckExact(marker)) {
        const std::optional<kernels::TextView> text = view_of(marker);
        if (!text || !markers.texts.add(*text)) return false;
        entry.bit = next_bit;
        next_bit <<= 1U;
    } else if (is_plain_number(marker)) {
        markers.number = true;
    } else {
        return false;
    }
    markers.entries.push_back(entry);
    return true;
}

}  // namespace

std::optional<Markers> plain_markers(Object list) {
    Markers markers;
    if (list.is_none()) return markers;
    if (!PyList_CheckExact(list.get())) return std::nullopt;
    const Py_ssize_t size = PyList_GET_SIZE(list.get());
    std::uint32_t next_bit = 1;
    for (Py_ssize_t i = 0; i < size; ++i) {
        if (!read(markers, PyList_GET_ITEM(list.get(), i), next_bit)) return std::nullopt;
    }
    return markers;
}

Ref markers_found(const Markers& markers, std::uint32_t bits, bool nulls) {
    Ref found = list({});
    for (const Markers::Entry& marker : markers.entries) {
        if ((marker.null && nulls) || (marker.bit & bits) != 0) append(found, marker.object);
    }
    return found;
}

}  // namespace quorin::columns
