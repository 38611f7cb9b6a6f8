"""How long the routines take, beside their interpreter route and what one would use instead."""
