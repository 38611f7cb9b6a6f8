#include "exportable_utils/transform/transform.hpp"
#include "python/module_names.hpp"
#include "python/operations.hpp"

namespace quorin::transform {

constinit const Definition convert_float32{
    .name = "convert_float32",
    .parameters = {{"X"}, {"force_flag", false}},
    .doc = R"(Converts 64-bit floats to 32-bit floats.

Parameters
----------
X : numpy.ndarray
force_flag : bool
    Convert an array of any other dtype as well.

Returns
-------
numpy.ndarray of float32, or `X` itself

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import convert_float32
>>> convert_float32(np.array([1.5, 2.5])).dtype
dtype('float32')
)",
    .body = [](Object X, Object force_flag) -> Ref {
        if (!equal(X.attr("dtype"_py), "float64"_py) && !truth(force_flag)) return Ref::share(X);
        return X.attr("astype"_py)({"float32"_py});
    },
};

}  // namespace quorin::transform
