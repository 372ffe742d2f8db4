#include "HeaderView.c"  // NOLINT(bugprone-suspicious-include): the same text, as C++11
