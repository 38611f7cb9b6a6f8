#include "exportable_utils/transform/compress_labels.hpp"
#include "exportable_utils/transform/transform.hpp"
#include "python/indexing.hpp"
#include "python/module_names.hpp"
#include "python/operations.hpp"

namespace quorin::transform {

namespace {

// "".join(s.split())
Ref without_white_space(Object s) {
    if (!PyUnicode_CheckExact(s.get())) return Object(""_py.text).attr("join"_py)({s.attr("split"_py)()});
    const Ref pieces = Ref::take(PyUnicode_Split(s.get(), nullptr, -1));
    return Ref::take(PyUnicode_Join(""_py.text, pieces.get()));
}

Ref digest(Object s) {
    const Ref bytes = s.attr("encode"_py)();
    const Ref md5 = global("hashlib"_py).attr("md5"_py)({bytes});
    return Object(&PyLong_Type)({md5.attr("hexdigest"_py)(), 16});
}

Ref compressed(Object label, Object compress_type) {
    return global("compress_string"_py)({label}, {{"compress_type"_py, compress_type}});
}

}  // namespace

void compress_row(Object X, Py_ssize_t row, Object text, Object misslist, Object compress_type) {
    const auto is_null = [&] { return truth(global("pd"_py).attr("isnull"_py)({text})); };
    if (!is_null() && !contains(misslist, text) && !truth(text.attr("isalnum"_py)())) {
        set_item(X, row, compressed(text, compress_type));
    } else if (equal(compress_type, "hash"_py)) {
        if (is_null() || contains(misslist, text)) {
            set_item(X, row, global("np"_py).attr("nan"_py));
        } else {
            set_item(X, row, compressed(text, compress_type));
        }
    }
}

constinit const Definition compress_string{
    .name = "compress_string",
    .parameters = {{"s"}, {"compress_type", "string"}},
    .doc = R"(Compresses a string to either a string without spaces or a int hash

:param s: input string
:param compress_type: 'string' or 'hash'
:return: compressed string or int hash

Parameters
----------
s : str
compress_type : str
    "string" removes all white space; anything else gives the MD5 digest of the text's UTF-8 bytes.

Returns
-------
str or int
    The number is not negative and has at most 128 bits.

Raises
------
AttributeError
    For anything but a text.

Examples
--------
>>> from quorin_libs.utils.exportable_utils import compress_string
>>> compress_string(" New  York ")
'NewYork'
>>> compress_string("a", compress_type="hash")
16955237001963240173058271559858726497
)",
    .lookups = {"hashlib.md5"},
    .body = [](Object s, Object compress_type) -> Ref {
        if (equal(compress_type, "string"_py)) return without_white_space(s);
        return digest(s);
    },
};

constinit const Definition compress_str_column{
    .name = "compress_str_column",
    .parameters = {{"X"}, {"misslist"}, {"compress_type", "string"}},
    .doc = R"(Compresses a column of strings to a column of strings without whitespaces or a column of int hashes

:param Xcol:
:param compress_type: 'string' or 'hash'
:return: Compressed column

Parameters
----------
X : numpy.ndarray of shape (n,), pandas.Series or list
    Written into, unless it is a list. An array of fixed-width text keeps its width: digests are cut to it.
misslist : list
    Labels that stand for missing.
compress_type : str
    "string" takes the white space out of labels that are not alphanumeric; "hash" turns every label into its digest
    and every missing one into NaN.

Returns
-------
numpy.ndarray or pandas.Series of shape (n,)
    `X` itself, or the array made of the list. A column that holds no text comes back as it is.

Raises
------
TypeError
    For a `misslist` that does not support `in`.
AttributeError
    For an array of two dimensions.

Examples
--------
>>> import numpy as np
>>> from quorin_libs.utils.exportable_utils import compress_str_column
>>> compress_str_column(np.array(["New York", "Oslo", "?"], dtype=object), ["?"])
array(['NewYork', 'Oslo', '?'], dtype=object)
)",
    .has_native_route = true,
    .lookups = {"pd.isnull", "np.nan", "compress_string"},
    .body = [](Object X, Object misslist, Object compress_type) -> Ref {
        if (Ref Xcol = native_compress_str_column(X, misslist, compress_type)) return Xcol;
        const Ref Xcol = is_instance(X, &PyList_Type) ? global("np"_py).attr("asarray"_py)({X}) : Ref::share(X);
        if (!contains("OSUV"_py.text, Xcol.attr("dtype"_py).attr("kind"_py))) return Ref::share(Xcol);
        const Ref Xcol_str = Xcol.attr("astype"_py)({&PyUnicode_Type});
        const Py_ssize_t num_rows = count(row_count(Xcol_str));
        for (Py_ssize_t i = 0; i < num_rows; ++i) compress_row(Xcol, i, item(Xcol_str, i), misslist, compress_type);
        return Ref::share(Xcol);
    },
};

}  // namespace quorin::transform
