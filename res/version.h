/* The library's version, once for the version resource and for whoever shows it. */
#define CORVANE_VERSION 1.0.0.0
#define CORVANE_VERSION_NUMBERS 1, 0, 0, 0

#define CORVANE_QUOTED(words) #words
#define CORVANE_TEXT(words) CORVANE_QUOTED(words)
#define CORVANE_VERSION_TEXT CORVANE_TEXT(CORVANE_VERSION)
