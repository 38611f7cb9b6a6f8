"""The extension module `exportable_utils` and the column tests of `fc_methods`."""
