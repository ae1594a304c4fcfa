// A library without functions, as one of another version may be.
