// The text form of vectors and points: "%f" per component, joined by ",".
#pragma once

#include "kwcore/platform/CString.h"

namespace kwTupleText {

CString Format(const float* tuple, int count);
CString Format(const double* tuple, int count);
// Removes the spaces, splits at "," with the library-wide tokenizer and
// converts up to count pieces like strtod. Empty pieces and components
// without a piece keep their value. Returns the number of components set.
int Parse(const CString& text, float* tuple, int count);
int Parse(const CString& text, double* tuple, int count);

}  // namespace kwTupleText
