#include "KWTupleText.h"

#include <cstdlib>

#include "kwcore/platform/CKWTokenizer.h"

namespace kwTupleText {
namespace {

template <class Real>
CString FormatTuple(const Real* tuple, int count) {
    CString text;
    for (int i = 0; i < count; ++i) {
        text.AppendFormat(i == 0 ? "%f" : ",%f", static_cast<double>(tuple[i]));
    }
    return text;
}

template <class Real>
int ParseTuple(const CString& text, Real* tuple, int count) {
    CString compact(text);
    compact.Remove(' ');
    CKWTokenizer& tokenizer = CKWTokenizer::GetLibraryTokenizer();
    int pieces = tokenizer.Tokenize(compact);
    int assigned = 0;
    for (int i = 0; i < count && i < pieces; ++i) {
        CString piece = tokenizer.GetToken(i);
        if (piece.IsEmpty()) {
            continue;
        }
        tuple[i] = static_cast<Real>(std::strtod(piece.GetString(), nullptr));
        ++assigned;
    }
    return assigned;
}

}  // namespace

CString Format(const float* tuple, int count) {
    return FormatTuple(tuple, count);
}
CString Format(const double* tuple, int count) {
    return FormatTuple(tuple, count);
}
int Parse(const CString& text, float* tuple, int count) {
    return ParseTuple(text, tuple, count);
}
int Parse(const CString& text, double* tuple, int count) {
    return ParseTuple(text, tuple, count);
}

}  // namespace kwTupleText
