// Entry point and start-up of the module. The order of the definitions here is the order in which names are bound.
#include "exportable_utils/classify/classify.hpp"
#include "exportable_utils/dataset/dataset.hpp"
#include "exportable_utils/features/features.hpp"
#include "exportable_utils/missing/missing.hpp"
#include "exportable_utils/services/services.hpp"
#include "exportable_utils/transform/transform.hpp"
#include "python/errors.hpp"
#include "python/lifecycle.hpp"
#include "python/lookup_guard.hpp"
#include "python/module_names.hpp"
#include "python/numpy.hpp"
#include "python/operations.hpp"
#include "python/routine.hpp"

#include <span>

namespace quorin {

namespace {

using Routines = std::span<const Definition* const>;

constexpr const Definition* module_routines[] = {
    &transform::numpy_select_columns,
    &transform::numpy_flatten_column,
    &transform::numpy_replace_values,
    &transform::numpy_permute_array,
    &transform::numpy_floatstr2float,
    &services::setValueOrDefault,
    &transform::numpy_boolean2float,
    &transform::compress_string,
    &transform::compress_str_column,
    &transform::convert_float32,
    &classify::numpy_get_categories_into_list,
    &classify::numpy_whatis,
    &classify::numpy_get_categories,
    &transform::numpy_remove_second_dim,
    &services::isint,
    &classify::numpy_is_column_monotonic_increasing,
    &classify::numpy_is_column_monotonic_decreasing,
    &classify::numpy_isintstr,
    &missing::numpy_compute_missing_indicator,
    &missing::numpy_isin,
    &missing::indicator_mask,
    &missing::get_unique_values,
    &services::isfloat,
    &transform::numpy_column_float2str,
    &services::QSR_raise_exception,
    &transform::numpy_putmask,
};

constexpr const Definition* fcplus_methods[] = {
    &features::is_column_datetime,
    &features::is_num_column_categorical,
    &features::is_column_categorical,
    &features::find_categorical_columns,
    &features::is_numerical,
    &features::find_numerical_columns,
    &features::is_dataset_for_classification,
    &features::is_dataset_preprocessed,
    &features::is_dataset_missing,
    &features::get_dataset_missing_columns,
    &features::is_dataset_numeric,
    &features::get_dataset_non_numeric_columns,
    &features::check_statistics,
    &features::is_column_missing,
    &features::is_column_sex,
    &features::is_column_height,
    &features::is_column_weight,
    &features::is_column_age,
    &features::is_column_timestamp,
    &features::is_column_positive,
    &features::is_column_non_negative,
    &features::is_column_not_all_non_negative,
    &features::is_column_lt80pc_unique_int,
    &features::is_column_constant,
    &features::is_column_categorical_mult_cats,
    &features::is_column_not_categorical,
    &features::is_column_string,
    &features::is_column_string_in_datetime_format,
    &features::is_column_epoch,
    &features::is_column_longitude,
    &features::is_column_latitude,
    &features::is_column_distance,
    &features::getClasses,
};

constexpr const Definition* routines_between_classes[] = {&classify::numpy_is_column_datetime};

constexpr const Definition* datasets_methods[] = {
    &dataset::init_from_file,
    &dataset::init_from_table,
    &dataset::AddNewColumns,
};

constexpr const Definition* datasets_static_methods[] = {&dataset::GetTargetType};

// import <module> as <name>
void import_module(Object names, const char* module, Name name) {
    set_item(names, name, Ref::take(PyImport_ImportModule(module)));
}

[[noreturn]] void fail_import(Object source, Name module, Name name) {
    const Ref file = Ref::adopt(PyModule_GetFilenameObject(source.get()));
    if (!file) PyErr_Clear();
    const Ref message = Ref::take(PyUnicode_FromFormat("cannot import name '%U' from '%U' (%S)", name.text, module.text,
                                                       file ? file.get() : "unknown location"_py.text));
    PyErr_SetImportError(message.get(), module.text, file ? file.get() : nullptr);
    throw PythonError(Where::current());
}

// from <module> import <name>
void import_from(Object names, Name module, Name name) {
    const Ref source = global("__import__"_py)({module, names, names, list({name}), 0});
    Ref found = Ref::adopt(PyObject_GetAttr(source.get(), name.text));
    if (!found) {
        if (!PythonError::matches(PyExc_AttributeError)) throw PythonError(Where::current());
        PyErr_Clear();
        // In a circular import the module may be in sys.modules but not yet an attribute of its package.
        const Ref whole_name = concat({module, "."_py, name});
        found = Ref::adopt(PyImport_GetModule(whole_name.get()));
        if (!found && PyErr_Occurred() != nullptr) throw PythonError(Where::current());
        if (!found) fail_import(source, module, name);
    }
    set_item(names, name, found);
}

void import_everything(Object names) {
    import_from(names, "quorin_libs.utils.fc_methods"_py, "FC"_py);
    import_module(names, "numbers", "numbers"_py);
    import_module(names, "random", "random"_py);
    import_module(names, "time", "time"_py);
    import_module(names, "traceback", "traceback"_py);
    import_from(names, "collections"_py, "Counter"_py);
    import_module(names, "numpy", "np"_py);
    import_module(names, "pandas", "pd"_py);
    import_module(names, "six", "six"_py);
    import_module(names, "logging", "logging"_py);
    import_module(names, "hashlib", "hashlib"_py);
    connect_numpy();
}

enum class Stored { bare, as_static_method };

// Binds each routine to its name. A later routine replaces an earlier one of the same name.
void define(Object names, Routines routines, const char* owner = nullptr, Stored stored = Stored::bare) {
    for (const Definition* definition : routines) {
        const Ref name = Ref::take(PyUnicode_InternFromString(definition->name));
        Ref routine = make_routine(*definition, owner);
        if (stored == Stored::as_static_method) routine = Object(&PyStaticMethod_Type)({routine});
        set_item(names, name, routine);
    }
}

// The namespace of a class: the names that a class statement sets before its body runs.
Ref class_names(Object names, Name name, Name doc) {
    Ref members = Ref::take(PyDict_New());
    set_item(members, "__module__"_py, item(names, "__name__"_py));
    set_item(members, "__qualname__"_py, name);
    set_item(members, "__doc__"_py, doc);
    return members;
}

void define_class(Object names, Name name, Object members) {
    set_item(names, name, Object(&PyType_Type)({name, tuple({}), members}));
}

void define_fcplus(Object names) {
    const Ref members = class_names(names, "FCplus"_py, "Tests of what a column or a whole table holds."_py);
    define(members, fcplus_methods, "FCplus", Stored::as_static_method);
    define_class(names, "FCplus"_py, members);
}

void define_datasets(Object names) {
    const Ref members = class_names(names, "DatasetS"_py, "Holder of one table."_py);
    define(members, datasets_methods, "DatasetS");
    define(members, datasets_static_methods, "DatasetS", Stored::as_static_method);
    define_class(names, "DatasetS"_py, members);
}

void start_up(Object names) {
    import_everything(names);
    const Ref nan = item(names, "np"_py).attr("nan"_py);
    set_item(names, "global_missing_values_reference_list"_py, list({"?"_py, ""_py, "-"_py, nan}));
    set_item(names, "logger"_py, item(names, "logging"_py).attr("getLogger"_py)());
    ready_routine_type();
    define(names, module_routines);
    define_fcplus(names);
    define(names, routines_between_classes);
    define_datasets(names);
    set_item(names, "__test__"_py, Ref::take(PyDict_New()));
    remember_lookups();
}

// Adds the module to sys.modules if the loader did not, and removes it again if start-up fails.
class Listing {
  public:
    explicit Listing(Object module) {
        if (contains(modules_, name_)) return;
        set_item(modules_, name_, module);
        listed_here_ = true;
    }
    ~Listing() {
        if (!listed_here_ || kept_) return;
        PyObject* type = nullptr;
        PyObject* value = nullptr;
        PyObject* traceback = nullptr;
        PyErr_Fetch(&type, &value, &traceback);
        if (PyObject_DelItem(modules_.get(), name_.get()) < 0) PyErr_Clear();
        PyErr_Restore(type, value, traceback);
    }
    Listing(const Listing&) = delete;
    Listing& operator=(const Listing&) = delete;
    Listing(Listing&&) = delete;
    Listing& operator=(Listing&&) = delete;
    void keep() noexcept { kept_ = true; }

  private:
    Object modules_ = PyImport_GetModuleDict();
    Object name_ = "quorin_libs.utils.exportable_utils"_py.text;
    bool listed_here_ = false;
    bool kept_ = false;
};

constexpr const char* init_name = "init quorin_libs.utils.exportable_utils";

int execute(PyObject* module) {
    const Ref done = Ref::adopt(behind_wall(init_name, [&] {
        StartUp start_up_once;
        const Object names = PyModule_GetDict(module);
        use_module_names(names);
        check_version("quorin_libs.utils.exportable_utils");
        set_item(names, "__builtins__"_py, Ref::take(PyImport_ImportModule("builtins")));
        Listing listing(module);
        start_up(names);
        listing.keep();
        start_up_once.succeeded();
        return Ref::none();
    }));
    return done ? 0 : -1;
}

PyObject* create(PyObject* spec, PyModuleDef* definition) {
    return behind_wall(init_name, [&] {
        claim_interpreter();
        // For m_size >= 0 CPython allocates module state, and importlib.reload() of a module with state silently does
        // nothing. Without state, reload() calls execute() again, which raises.
        definition->m_size = -1;
        return Ref::take(PyModule_NewObject(Ref::take(PyObject_GetAttrString(spec, "name")).get()));
    });
}

PyModuleDef_Slot slots[] = {
    {Py_mod_create, reinterpret_cast<void*>(create)},
    {Py_mod_exec, reinterpret_cast<void*>(execute)},
#if PY_VERSION_HEX >= 0x030C0000
    // The module does not support a second interpreter of any kind. With this declaration create() raises the error
    // instead of the import machinery.
    {Py_mod_multiple_interpreters, Py_MOD_PER_INTERPRETER_GIL_SUPPORTED},
#endif
    {0, nullptr},
};

PyModuleDef module_definition = {
    PyModuleDef_HEAD_INIT,
    "exportable_utils",
    "Column profiling for automated machine learning.",
    0,
    nullptr,
    slots,
    nullptr,
    nullptr,
    nullptr,
};

}  // namespace

}  // namespace quorin

PyMODINIT_FUNC PyInit_exportable_utils() {
    // CPython rejects a definition with slots and a negative m_size; create() sets it to -1 afterwards.
    quorin::module_definition.m_size = 0;
    return PyModuleDef_Init(&quorin::module_definition);
}
