#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <sstream>
#include <vector>

#include "kwcore/geometry/triangulation/KWPolygonTriangulation.h"

using namespace kwPolygonTriangulation;

namespace {

// Vertical edges at chosen x: their key is x at every height.
class EdgeSet {
public:
    Linebase* Vertical(double x) {
        m_points.emplace_back(new Pointbase(x, 0.0));
        m_points.emplace_back(new Pointbase(x, 1.0));
        m_lines.emplace_back(new Linebase(m_points[m_points.size() - 2].get(),
                                          m_points.back().get(), INPUT,
                                          static_cast<unsigned>(m_lines.size() + 1)));
        m_lines.back()->setKeyValue(0.5);
        return m_lines.back().get();
    }

private:
    std::vector<std::unique_ptr<Pointbase>> m_points;
    std::vector<std::unique_ptr<Linebase>> m_lines;
};

std::vector<double> Keys(const EdgeBST& tree) {
    static std::vector<double>* out;
    std::vector<double> keys;
    out = &keys;
    tree.InOrder([](EdgeBST::Node* node) { out->push_back(node->keyValue()); });
    return keys;
}

}  // namespace

TEST(LinebaseKey, CrossingOfTheSweepLineAndSmallerXWhenHorizontal) {
    Pointbase a(0, 0), b(4, 2), c(5, 2);
    Linebase slanted(&a, &b, INPUT, 1);
    slanted.setKeyValue(1.0);
    EXPECT_DOUBLE_EQ(slanted.keyValue(), 2.0);
    Linebase horizontal(&c, &b, INPUT, 2);
    horizontal.setKeyValue(2.0);
    EXPECT_EQ(horizontal.keyValue(), 4.0);
    horizontal.reverse();
    EXPECT_EQ(horizontal.endPoint(0), &b);
    horizontal.increaseKeyValue(1e-10);
    EXPECT_EQ(horizontal.keyValue(), 4.0 + 1e-10);
    // Far from zero the increase still moves the key.
    Pointbase far1(1e12, 0), far2(1e12, 1);
    Linebase far(&far1, &far2, INPUT, 3);
    far.setKeyValue(0.5);
    far.increaseKeyValue(1e-10);
    EXPECT_GT(far.keyValue(), 1e12);
}

TEST(SplayTree, KeepsEdgesOrderedAndFindsTheEdgeDirectlyLeft) {
    EdgeSet edges;
    EdgeBST tree;
    std::mt19937 engine(3);
    std::vector<double> xs;
    for (int i = 0; i < 200; ++i) {
        xs.push_back(i * 2.0);
    }
    std::shuffle(xs.begin(), xs.end(), engine);
    for (double x : xs) {
        tree.Insert(edges.Vertical(x));
    }
    EXPECT_EQ(tree.Size(), 200);
    const std::vector<double> keys = Keys(tree);
    ASSERT_EQ(keys.size(), 200u);
    EXPECT_TRUE(std::is_sorted(keys.begin(), keys.end()));

    EdgeBST::Node* left = nullptr;
    tree.FindMaxSmallerThan(7.0, left);
    ASSERT_NE(left, nullptr);
    EXPECT_EQ(left->keyValue(), 6.0);
    tree.FindMaxSmallerThan(6.0, left);  // strictly smaller
    EXPECT_EQ(left->keyValue(), 4.0);
    tree.FindMaxSmallerThan(0.0, left);
    EXPECT_EQ(left, nullptr);

    tree.Delete(6.0);
    EXPECT_EQ(tree.Find(6.0), nullptr);
    EXPECT_EQ(tree.Size(), 199);
    tree.FindMaxSmallerThan(7.0, left);
    EXPECT_EQ(left->keyValue(), 4.0);
    EdgeBST::Node* removed = nullptr;
    tree.Delete(8.0, removed);
    ASSERT_NE(removed, nullptr);
    EXPECT_EQ(removed->keyValue(), 8.0);
    delete removed;
    tree.Delete(9.0, removed);
    EXPECT_EQ(removed, nullptr);

    EXPECT_EQ(tree.FindMin()->keyValue(), 0.0);
    EXPECT_EQ(tree.FindMax()->keyValue(), 398.0);
    tree.DeleteMax(removed);
    EXPECT_EQ(removed->keyValue(), 398.0);
    delete removed;
    tree.DeleteMin(removed);
    EXPECT_EQ(removed->keyValue(), 0.0);
    delete removed;
    EXPECT_EQ(tree.Size(), 196);
    EXPECT_GE(tree.Height(), 8);
    tree.MakeEmpty();
    EXPECT_TRUE(tree.IsEmpty());
    EXPECT_EQ(tree.Height(), 0);
}

TEST(SplayTree, EqualKeysAreNudgedApartAndBothKept) {
    EdgeSet edges;
    EdgeBST tree;
    Linebase* first = edges.Vertical(3.0);
    Linebase* second = edges.Vertical(3.0);
    tree.Insert(first);
    tree.Insert(second);
    EXPECT_EQ(tree.Size(), 2);
    EXPECT_EQ(first->keyValue(), 3.0);
    EXPECT_EQ(second->keyValue(), 3.0 + 1e-10);
    EXPECT_EQ(tree.Find(3.0 + 1e-10)->data(), second);
}

TEST(SplayTree, TraversalsCopiesAndRefreshedKeys) {
    EdgeSet edges;
    EdgeBST tree;
    // Sorted insertion degenerates a splay tree into a path: walks must cope.
    for (int i = 0; i < 100000; ++i) {
        tree.Insert(edges.Vertical(i));
    }
    EXPECT_EQ(tree.Height(), 100000);
    static long visits;
    visits = 0;
    tree.PreOrder([](EdgeBST::Node*) { ++visits; });
    tree.PostOrder([](EdgeBST::Node*) { ++visits; });
    tree.InOrder([](EdgeBST::Node*, double) { ++visits; }, 0.0);
    EXPECT_EQ(visits, 300000);
    std::ostringstream out;
    EdgeBST small;
    small.Insert(edges.Vertical(-1));
    small.Insert(edges.Vertical(-2));
    small.InOrder([](EdgeBST::Node* node, std::ostream& s) { s << node->keyValue() << ";"; }, out);
    EXPECT_EQ(out.str(), "-2;-1;");
    const EdgeBST copy(small);
    EXPECT_EQ(Keys(copy), Keys(small));

    // With a refresh, the keys a search passes are recomputed at the new height.
    Pointbase a(0, 0), b(10, 10);
    Linebase diagonal(&a, &b, INPUT, 1);
    diagonal.setKeyValue(0.0);
    EdgeBST sweep;
    sweep.Insert(&diagonal);
    sweep.SetKeyRefresh(5.0);
    EdgeBST::Node* left = nullptr;
    sweep.FindMaxSmallerThan(6.0, left);
    ASSERT_NE(left, nullptr);
    EXPECT_EQ(diagonal.keyValue(), 5.0);
    sweep.FindMaxSmallerThan(4.0, left);
    EXPECT_EQ(left, nullptr);
}

TEST(SplayTree, ReusesItsNodesThroughRemovalsCopiesAndEmptying) {
    // Nodes come from the tree's own blocks; those handed to the caller are
    // the caller's to delete, and copies draw from the copy's blocks.
    EdgeSet edges;
    std::vector<Linebase*> lines;
    for (int i = 0; i < 300; ++i) {
        lines.push_back(edges.Vertical(i));
    }
    EdgeBST tree;
    for (int round = 0; round < 3; ++round) {
        for (Linebase* line : lines) {
            tree.Insert(line);
        }
        ASSERT_EQ(tree.Size(), 300);
        for (int i = 0; i < 300; i += 2) {
            tree.Delete(static_cast<double>(i));
        }
        EdgeBST::Node* removed = nullptr;
        tree.Delete(1.0, removed);
        ASSERT_NE(removed, nullptr);
        EXPECT_EQ(removed->data(), lines[1]);
        EXPECT_EQ(removed->left(), nullptr);
        delete removed;
        EdgeBST copy(tree);
        tree.MakeEmpty();
        EXPECT_TRUE(tree.IsEmpty());
        ASSERT_EQ(copy.Size(), 149);
        EXPECT_EQ(Keys(copy).front(), 3.0);
        copy.DeleteMax(removed);
        EXPECT_EQ(removed->keyValue(), 299.0);
        delete removed;
        EdgeBST assigned;
        assigned.Insert(lines[0]);
        assigned = copy;
        EXPECT_EQ(Keys(assigned), Keys(copy));
    }
}
