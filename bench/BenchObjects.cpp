#include "BenchObjects.h"

#include <map>

#include "KWTestObjects.h"

KW_IMPLEMENT_TYPE(CBenchWidget, "{2B8E4F61-7A3C-4D95-8E1F-0C6B5A4D3E21}",
                  "{3719246B-C3B0-4AE9-9723-6E998C42484A}")

const std::vector<CBenchWidget*>& LiveWidgets(std::size_t n) {
    static std::map<std::size_t, std::vector<CBenchWidget*>> pools;
    std::vector<CBenchWidget*>& pool = pools[n];
    while (pool.size() < n) {
        pool.push_back(KWTestCreate<CBenchWidget>(CBenchWidget::GetCBenchWidgetType()));
    }
    return pool;
}

namespace {
const SCollectTypes s_collectBenchTypes(CKWGuid::CreateNewGUID());
}  // namespace
