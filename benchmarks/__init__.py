"""Times of the routines, of their interpreter route and of peers."""
