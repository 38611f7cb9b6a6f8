"""What the tests share: the comparison with the model, strategies, replacements, tables."""
