#include "kwcore/framework/CKWToolEventRouter.h"

KW_IMPLEMENT_TYPE(CKWToolEventRouter, "{89C55D8F-1380-41E3-8A0C-245E1E4778D5}",
                  "{D265DD01-767A-4ACB-BCF6-02720CB234E1}")
