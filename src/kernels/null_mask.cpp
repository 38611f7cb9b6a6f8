#include "kernels/null_mask.hpp"

namespace quorin::kernels {

namespace {

template <class Float, class At>
bool mark(At at, std::size_t rows, std::uint8_t* out) noexcept {
    std::uint8_t any = 0;
    for (std::size_t row = 0; row < rows; ++row) {
        const Float value = at(row);
        const auto null = static_cast<std::uint8_t>(value != value);
        out[row] = null;
        any |= null;
    }
    return any != 0;
}

template <class Float>
bool mark_nulls(const char* data, std::ptrdiff_t stride, std::size_t rows, std::uint8_t* out) noexcept {
    if (stride == static_cast<std::ptrdiff_t>(sizeof(Float))) {
        const auto* values = reinterpret_cast<const Float*>(data);
        return mark<Float>([values](std::size_t row) { return values[row]; }, rows, out);
    }
    const auto apart = [=](std::size_t row) {
        return *reinterpret_cast<const Float*>(data + static_cast<std::ptrdiff_t>(row) * stride);
    };
    return mark<Float>(apart, rows, out);
}

}  // namespace

bool mark_nulls_float64(const char* data, std::ptrdiff_t stride, std::size_t rows, std::uint8_t* out) noexcept {
    return mark_nulls<double>(data, stride, rows, out);
}

bool mark_nulls_float32(const char* data, std::ptrdiff_t stride, std::size_t rows, std::uint8_t* out) noexcept {
    return mark_nulls<float>(data, stride, rows, out);
}

}  // namespace quorin::kernels
