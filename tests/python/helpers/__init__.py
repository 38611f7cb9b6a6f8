"""Shared code of the tests: comparison with the model, strategies, replacements, tables."""
