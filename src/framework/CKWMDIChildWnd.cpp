#include "kwcore/framework/CKWMDIChildWnd.h"

CKWMDIChildWnd::~CKWMDIChildWnd() = default;
