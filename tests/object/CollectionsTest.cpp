// The object list, the object map and their iterators.
#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "TestTypes.h"
#include "kwcore/object/CKWObjGuidPtrMap.h"
#include "kwcore/object/CKWObjPtrList.h"

namespace {

// Braced lists evaluate left to right: a list of calls is a sequence of them.
using Results = std::vector<int>;
using Widgets = std::vector<CTestWidget*>;

class Collections : public ::testing::Test {
protected:
    void SetUp() override { CTestWidget::s_releasedIDs.clear(); }
    void TearDown() override {
        for (CTestWidget* w : m_widgets) {
            if (w) {
                w->Release();
            }
        }
    }
    CTestWidget* Make(const char* id = nullptr) {
        auto* w = KWTestCreate<CTestWidget>(CTestWidget::GetCTestWidgetType(),
                                            id ? CKWGuid(id) : CKWGuid());
        m_widgets.push_back(w);
        return w;
    }
    // The test no longer owns the widget (a collection released it).
    void Forget(CTestWidget* w) {
        std::replace(m_widgets.begin(), m_widgets.end(), w, static_cast<CTestWidget*>(nullptr));
    }

    std::vector<CTestWidget*> m_widgets;
};

TEST_F(Collections, ListHoldsEachObjectOnceInInsertionOrder) {
    CKWObjPtrList<CTestWidget> list;
    CTestWidget* a = Make();
    CTestWidget* b = Make();
    EXPECT_EQ((Results{list.Add(a), list.Add(a), list.Add(nullptr), list.Add(b)}),
              (Results{1, 0, 0, 1}));
    EXPECT_EQ(list.GetCount(), 2);
    EXPECT_EQ(ElementsOf(list.GetIterator()), (Widgets{a, b}));
    EXPECT_EQ(ElementsOf(list.GetReverseIterator()), (Widgets{b, a}));
    EXPECT_EQ(list.Find(b->GetInstanceID()), static_cast<void*>(b));
    EXPECT_EQ(list.Find(CKWGuid::CreateNewGUID()), nullptr);
    EXPECT_EQ((Results{list.Remove(a), list.Remove(a), list.Remove(nullptr)}), (Results{1, 0, 0}));
    EXPECT_FALSE(list.Contains(a));
}

TEST_F(Collections, LargeListsKeepOrderAndMembershipThroughAddAndRemove) {
    CKWObjPtrList<CTestWidget> list;
    std::vector<CTestWidget*> kept;
    for (int i = 0; i < 200; ++i) {
        CTestWidget* w = Make();
        ASSERT_EQ(list.Add(w), 1);
        ASSERT_EQ(list.Add(w), 0);
        if (i % 3) {
            kept.push_back(w);
        }
    }
    for (int i = 0; i < 200; i += 3) {
        ASSERT_EQ(list.Remove(m_widgets[i]), 1);
        ASSERT_EQ(list.Remove(m_widgets[i]), 0);
    }
    EXPECT_EQ(ElementsOf(list.GetIterator()), kept);
    CKWObjPtrList<CTestWidget> copy(list);
    EXPECT_EQ(copy.Add(kept.front()), 0);
    EXPECT_EQ(copy.Remove(kept.back()), 1);
    EXPECT_EQ(list.GetCount(), static_cast<int>(kept.size()));
    list.RemoveAll(false);  // without release: the objects live on
    EXPECT_EQ(list.GetCount(), 0);
    EXPECT_EQ(CTestWidget::GetCTestWidgetType()->FindInstance(kept[0]->GetInstanceID()), kept[0]);
    EXPECT_EQ(list.Add(kept.front()), 1);
}

TEST_F(Collections, ListsAppendedWithoutLookupFindEveryElementAndMoveWhole) {
    CKWObjPtrList<CTestWidget> list;
    std::vector<CTestWidget*> all;
    for (int i = 0; i < 100; ++i) {
        const auto before = list.GetChangeCount();
        all.push_back(Make());
        list.AddNew(all.back());
        ASSERT_GT(list.GetChangeCount(), before);
        if (i == 50) {  // a lookup half way indexes what is there so far
            ASSERT_TRUE(list.Contains(all[20]));
        }
    }
    EXPECT_EQ((Results{list.Add(all[99]), list.Remove(all[70]), list.Remove(all[70])}),
              (Results{0, 1, 0}));
    all.erase(all.begin() + 70);
    EXPECT_EQ(ElementsOf(list.GetIterator()), all);

    CKWObjPtrList<CTestWidget> moved(std::move(list));
    EXPECT_EQ(list.GetCount(), 0);  // NOLINT(bugprone-use-after-move): moved-from is empty
    EXPECT_EQ(list.Add(all[0]), 1);
    EXPECT_EQ(ElementsOf(moved.GetIterator()), all);
    CKWObjPtrList<CTestWidget> assigned;
    assigned.Add(all[5]);
    assigned = std::move(moved);
    EXPECT_EQ(ElementsOf(assigned.GetIterator()), all);
    EXPECT_EQ(assigned.Remove(all[98]), 1);
    list = assigned;
    EXPECT_EQ(list.GetCount(), 98);
    EXPECT_EQ(list.Add(all[98]), 1);
    assigned.RemoveAll(false);
    assigned.AddNew(all[1]);
    EXPECT_EQ(ElementsOf(assigned.GetIterator()), (Widgets{all[1]}));
}

TEST_F(Collections, ReleaseAllGoesFrontToBackInListsAndByAscendingIDInMaps) {
    // Added late ID first: the list releases in that order, the map reversed.
    const CKWGuid late("{9F000000-0000-4000-8000-000000000000}");
    const CKWGuid early("{10000000-0000-4000-8000-000000000000}");
    const auto releaseAll = [&](auto collection) {
        CTestWidget::s_releasedIDs.clear();
        collection.Add(Make(late.GetCString()));
        collection.Add(Make(early.GetCString()));
        m_widgets.clear();
        collection.RemoveAll(true);
        EXPECT_EQ(collection.GetCount(), 0);
        EXPECT_EQ(CTestWidget::GetCTestWidgetType()->FindInstance(late), nullptr);
        return CTestWidget::s_releasedIDs;
    };
    EXPECT_EQ(releaseAll(CKWObjPtrList<CTestWidget>()), (std::vector<CKWGuid>{late, early}));
    EXPECT_EQ(releaseAll(CKWObjGuidPtrMap<CTestWidget>()), (std::vector<CKWGuid>{early, late}));
}

TEST_F(Collections, ListReleaseAllSurvivesElementsThatRemoveOthers) {
    CKWObjPtrList<CTestWidget> list;
    CTestWidget* a = Make();
    CTestWidget* b = Make();
    list.Add(a);
    list.Add(b);
    // Releasing a takes b out of the list and releases it too (a node and its edge).
    a->m_pContext = &list;
    a->m_pOnRelease = [](CTestWidget* self) {
        auto* owner = static_cast<CKWObjPtrList<CTestWidget>*>(self->m_pContext);
        CTestWidget* other = static_cast<CTestWidget*>(owner->GetIterator().GetNext(1));
        owner->Remove(other);
        other->Release();
    };
    list.RemoveAll(true);
    Forget(a);
    Forget(b);
    EXPECT_EQ(CTestWidget::s_releasedIDs.size(), 2u);
    EXPECT_EQ(list.GetCount(), 0);
}

TEST_F(Collections, MapKeysByInstanceIDAtAddTime) {
    CKWObjGuidPtrMap<CTestWidget> map;
    CTestWidget* a = Make("{00000002-0000-4000-8000-000000000000}");
    CTestWidget* b = Make("{00000001-0000-4000-8000-000000000000}");
    EXPECT_EQ((Results{map.Add(a), map.Add(a), map.Add(nullptr), map.Add(b)}),
              (Results{1, 0, 0, 1}));
    EXPECT_EQ(ElementsOf(map.GetIterator()), (Widgets{b, a}));
    EXPECT_EQ(map.FindObject(a->GetInstanceID()), a);

    // The key stays what it was when added.
    const CKWGuid oldID = a->GetInstanceID();
    a->ChangeInstanceID(CKWGuid("{00000003-0000-4000-8000-000000000000}"));
    EXPECT_EQ(map.Remove(a), 0);
    EXPECT_EQ(map.Find(oldID), static_cast<void*>(a));
    a->ChangeInstanceID(oldID);
    EXPECT_EQ((Results{map.Remove(a), map.Remove(nullptr)}), (Results{1, 0}));
}

TEST_F(Collections, LargeMapsFindEveryMemberThroughAddRemoveCopyAndClear) {
    CKWObjGuidPtrMap<CTestWidget> map;
    for (int i = 0; i < 200; ++i) {
        ASSERT_EQ(map.Add(Make()), 1);
    }
    for (int i = 0; i < 200; i += 2) {
        ASSERT_EQ(map.Remove(m_widgets[i]), 1);
    }
    CKWObjGuidPtrMap<CTestWidget> copy(map);
    for (int i = 0; i < 200; ++i) {
        CTestWidget* expected = i % 2 ? m_widgets[i] : nullptr;
        ASSERT_EQ(map.FindObject(m_widgets[i]->GetInstanceID()), expected);
        ASSERT_EQ(copy.FindObject(m_widgets[i]->GetInstanceID()), expected);
    }
    EXPECT_EQ(map.Add(m_widgets[1]), 0);
    map.RemoveAll(false);
    EXPECT_EQ(map.GetCount(), 0);
    EXPECT_EQ(map.FindObject(m_widgets[1]->GetInstanceID()), nullptr);
    EXPECT_TRUE(CTestWidget::s_releasedIDs.empty());
    EXPECT_EQ(copy.GetCount(), 100);
    copy = map;
    EXPECT_EQ(copy.FindObject(m_widgets[1]->GetInstanceID()), nullptr);
    EXPECT_EQ(copy.Add(m_widgets[1]), 1);
}

TEST_F(Collections, MapRefusesASecondObjectWithTheSameID) {
    CKWObjGuidPtrMap<CTestWidget> map;
    CTestWidget* a = Make();
    CTestWidget* twin = Make();
    twin->ChangeInstanceID(a->GetInstanceID());
    EXPECT_EQ((Results{map.Add(a), map.Add(twin), map.GetCount()}), (Results{1, 0, 1}));
    twin->ChangeInstanceID(CKWGuid::CreateNewGUID());
}

TEST_F(Collections, IteratorsOnEmptyOrDetachedCollectionsGiveNull) {
    CKWObjPtrList<CTestWidget> list;
    CKWObjGuidPtrMap<CTestWidget> map;
    CKWObjPtrList<CTestWidget>::Iterator detached;
    CKWObjGuidPtrMap<CTestWidget>::Iterator detachedMap;
    EXPECT_EQ((Widgets{list.GetIterator().GetNext(1), list.GetReverseIterator().GetNext(1),
                       map.GetIterator().GetNext(1), detached.GetNext(1), detached.GetNext(0),
                       detachedMap.GetNext(1)}),
              Widgets(6, nullptr));
    EXPECT_TRUE(list.GetIterator().IsValid());
    EXPECT_FALSE(detached.IsValid());
    detached.Reset(1);
    EXPECT_FALSE(detached.IsValid());
}

TEST_F(Collections, IteratorsRestartFromTheFirstElement) {
    CKWObjPtrList<CTestWidget> list;
    CTestWidget* first = Make();
    CTestWidget* second = Make();
    CTestWidget* third = Make();
    list.Add(first);
    list.Add(second);
    list.Add(third);
    auto reverse = list.GetReverseIterator();
    EXPECT_EQ((Widgets{reverse.GetNext(1), reverse.GetNext(0)}), (Widgets{third, second}));
    reverse.Reset(1);
    EXPECT_EQ(reverse.GetNext(0), third);
    auto forward = list.GetIterator();
    forward.GetNext(1);
    forward.Reset(0);  // without bFromStart the position stays
    EXPECT_EQ(
        (Widgets{forward.GetNext(0), forward.GetNext(0), forward.GetNext(0), forward.GetNext(1)}),
        (Widgets{second, third, nullptr, first}));
}

}  // namespace
