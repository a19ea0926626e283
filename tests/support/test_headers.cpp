// Exists for the headers that are compiled with it.
