// libFuzzer target over the text form of points and vectors (FromString and
// ToString), in two, three and four dimensions and both precisions.
//
// Each input is read into a tuple of known components and the result is
// compared with a plain model of the rule: spaces removed, pieces split at
// ",", at most N used, an empty piece or a missing one keeps its component,
// the others converted with strtod. The tuple it gives is then written and
// read back: the text must read back whole and write the same again.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "kwcore/geometry/linear/CKWPoint2T.h"
#include "kwcore/geometry/linear/CKWPoint3T.h"
#include "kwcore/geometry/linear/CKWPoint4T.h"
#include "kwcore/geometry/linear/CKWVector2T.h"
#include "kwcore/geometry/linear/CKWVector3T.h"
#include "kwcore/geometry/linear/CKWVector4T.h"

namespace {

void Require(bool condition, const char* what, const std::string& text) {
    if (!condition) {
        std::fprintf(stderr, "tuple text fuzzer: %s\ntext: \"%s\"\n", what, text.c_str());
        std::abort();
    }
}

// The pieces between commas, empty ones kept; an empty text has none.
std::vector<std::string> ModelPieces(const std::string& text) {
    std::string compact;
    for (char ch : text) {
        if (ch != ' ') {
            compact.push_back(ch);
        }
    }
    std::vector<std::string> pieces;
    if (compact.empty()) {
        return pieces;
    }
    std::size_t start = 0;
    for (std::size_t comma = compact.find(','); comma != std::string::npos;
         comma = compact.find(',', start)) {
        pieces.push_back(compact.substr(start, comma - start));
        start = comma + 1;
    }
    pieces.push_back(compact.substr(start));
    return pieces;
}

// Components compare by their bytes, as the tuples themselves do.
template <class Tuple>
bool SameComponents(const Tuple& a, const Tuple& b) {
    return std::memcmp(a.GetTuple(), b.GetTuple(), sizeof(a[0]) * a.GetN()) == 0;
}

template <class Tuple>
using ComponentOf = std::decay_t<decltype(std::declval<Tuple&>()[0])>;

template <class Tuple>
Tuple StartValue() {
    Tuple tuple;
    for (int i = 0; i < tuple.GetN(); ++i) {
        tuple[i] = static_cast<ComponentOf<Tuple> >(-17.25 - i);
    }
    return tuple;
}

template <class Tuple>
void CheckTuple(const std::string& text) {
    Tuple read = StartValue<Tuple>();
    const int assigned = read.FromString(CString(text));

    Tuple expected = StartValue<Tuple>();
    const std::vector<std::string> pieces = ModelPieces(text);
    int expectedAssigned = 0;
    for (int i = 0; i < expected.GetN() && i < static_cast<int>(pieces.size()); ++i) {
        if (!pieces[static_cast<std::size_t>(i)].empty()) {
            expected[i] = static_cast<ComponentOf<Tuple> >(
                std::strtod(pieces[static_cast<std::size_t>(i)].c_str(), nullptr));
            ++expectedAssigned;
        }
    }
    Require(assigned == expectedAssigned, "FromString counted other components", text);
    Require(SameComponents(read, expected), "FromString read other components", text);

    const CString written = read.ToString();
    Tuple again = StartValue<Tuple>();
    Require(again.FromString(written) == again.GetN(), "ToString text did not read back whole",
            written.GetStdString());
    Require(again.ToString() == written, "ToString text read back as another text",
            written.GetStdString());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    CheckTuple<CKWPoint2T<float, double> >(text);
    CheckTuple<CKWPoint3T<float, double> >(text);
    CheckTuple<CKWPoint4T<float, double> >(text);
    CheckTuple<CKWPoint2T<double, float> >(text);
    CheckTuple<CKWPoint3T<double, float> >(text);
    CheckTuple<CKWPoint4T<double, float> >(text);
    CheckTuple<CKWVector2T<float, double> >(text);
    CheckTuple<CKWVector3T<float, double> >(text);
    CheckTuple<CKWVector4T<float, double> >(text);
    CheckTuple<CKWVector2T<double, float> >(text);
    CheckTuple<CKWVector3T<double, float> >(text);
    CheckTuple<CKWVector4T<double, float> >(text);
    return 0;
}
