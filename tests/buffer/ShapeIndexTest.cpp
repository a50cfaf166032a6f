#include "buffer/ShapeIndex.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace bvx {
namespace {

// Random inserts, replacements and removals against std::map: the removal
// that shifts later entries back is where an open-addressing table breaks.
TEST(ShapeIndex, AgreesWithAnOrderedMapUnderRandomChurn)
{
    std::vector<char> shapes(64);
    auto shape = [&](int i) { return reinterpret_cast<CObjShape*>(&shapes[size_t(i)]); };
    ShapeIndex index;
    std::map<int32_t, CObjShape*> model;
    std::mt19937 rng(17);
    for (int step = 0; step < 200000; ++step) {
        // Few distinct numbers force long runs and wrap-around; extremes too.
        int32_t number = step % 1000 == 0 ? INT32_MIN + int32_t(rng() % 3) : int32_t(rng() % 700) - 50;
        CObjShape* s = shape(int(rng() % 64));
        if (rng() % 3) {
            index.Insert(number, s);
            model[number] = s;
        } else {
            auto it = model.find(number);
            index.Erase(number, s);
            if (it != model.end() && it->second == s) model.erase(it);
        }
        if (step % 997 == 0) {
            ASSERT_EQ(index.Size(), model.size()) << "step " << step;
            for (int32_t n = -60; n < 660; ++n) {
                auto it = model.find(n);
                ASSERT_EQ(index.Find(n), it == model.end() ? nullptr : it->second) << "step " << step << " number " << n;
            }
        }
        if (step == 150000) {
            index.Clear();
            model.clear();
        }
    }
}

} // namespace
} // namespace bvx
