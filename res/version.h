/* The library's version, once for the version resource and for whoever shows it. */
#define CORVANE_VERSION_NUMBERS 1, 0, 0, 0
#define CORVANE_VERSION_TEXT "1.0.0.0"
