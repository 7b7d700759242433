// The points' out-of-line template code and the exported point
// instantiations (exported through their declarations in the headers).

#include "KWTupleText.h"
#include "kwcore/geometry/linear/CKWPoint2T.h"
#include "kwcore/geometry/linear/CKWPoint3T.h"
#include "kwcore/geometry/linear/CKWPoint4T.h"

#define KW_POINT_TEXT_FORMS(Point, n)                         \
    template <class Real, class Other>                        \
    CString Point<Real, Other>::ToString() const {            \
        return kwTupleText::Format(this->m_aTuple, n);        \
    }                                                         \
    template <class Real, class Other>                        \
    int Point<Real, Other>::FromString(const CString& text) { \
        return kwTupleText::Parse(text, this->m_aTuple, n);   \
    }                                                         \
    template <class Real, class Other>                        \
    const Point<Real, Other> Point<Real, Other>::ZERO = Point();

KW_POINT_TEXT_FORMS(CKWPoint2T, 2)
KW_POINT_TEXT_FORMS(CKWPoint3T, 3)
KW_POINT_TEXT_FORMS(CKWPoint4T, 4)

#undef KW_POINT_TEXT_FORMS

template class CKWPointT<2, float, double>;
template class CKWPointT<3, float, double>;
template class CKWPointT<4, float, double>;
template class CKWPointT<2, double, float>;
template class CKWPointT<3, double, float>;
template class CKWPointT<4, double, float>;
template class CKWPoint2T<float, double>;
template class CKWPoint2T<double, float>;
template class CKWPoint3T<float, double>;
template class CKWPoint3T<double, float>;
template class CKWPoint4T<float, double>;
template class CKWPoint4T<double, float>;
