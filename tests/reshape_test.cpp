// RESHAPE of every element size against a model and the machine's Fortran compiler. SOURCE and
// PAD cannot be written and end with what may be read; what is around a result is compared.
#include "guarded.h"
#include "support.h"

#include <gtest/gtest.h>
#include <numeric>

extern "C" void fortran_reshape(int dim, int n, int elements, int pads, const int *extents,
                                const int *order, const void *array, const void *pad, void *moved);

namespace {

using namespace test;
f90_Intrinsic *const members[][10] = {
    {f90_reshape1, f90_reshape2, f90_reshape4, f90_reshape8, f90_reshape10, f90_reshape16,
     f90_reshape20, f90_reshape32, f90_reshapen, f90_Reshape_Validation},
    {f90_kreshape1, f90_kreshape2, f90_kreshape4, f90_kreshape8, f90_kreshape10, f90_kreshape16,
     f90_kreshape20, f90_kreshape32, f90_kreshapen, f90_kReshape_Validation}};

Shape natural(int rank) {
    Shape order(rank);
    std::iota(order.begin(), order.end(), 1);
    return order;
}

// The element of `array` that is the n-th of its part of these extents, its dimensions in order.
int place(int n, const Shape &extents, const Shape &order, const Shape &array) {
    int at = 0;
    for (const int dim : order) {
        at += n % extents[dim - 1] * int(elements(Shape(array.begin(), array.begin() + dim - 1)));
        n /= extents[dim - 1];
    }
    return at;
}

// Dense, with strides of any size and sign, or a part of a dense array forwards or backwards.
struct Operand : GuardedArray {
    Operand(Random &random, int k, const Shape &of, int form)
        : GuardedArray(random, k, form == 2 ? wider(random, of) : of, form == 1) {
        if (of.empty()) descriptor.EXTENT = 1;
        if (form != 2) return;
        const std::vector<std::ptrdiff_t> places = std::exchange(offsets, {});
        const bool back = coin(random);
        for (int i = 0; i < int(elements(of)); ++i) {
            const int at = place(i, of, natural(of.size()), shape);
            offsets.push_back(places[back ? places.size() - 1 - at : at]);
        }
        for (auto &dim : descriptor.Dim) dim.Stride *= back ? -1 : 1;
        for (std::size_t d = 0; d < of.size(); ++d) descriptor.Dim[d].Upper -= shape[d] - of[d];
        descriptor.EXTENT = size();
        descriptor.BASE = size() == 0 ? nullptr : at(0);
        descriptor.NONCONTIG = pick(random, 1, 255);
        shape = of;
    }
    static Shape wider(Random &random, Shape extents) {
        for (int &extent : extents) extent += pick(random, 0, 3);
        return extents;
    }
};

// Integers of 32 or 64 bits, the high words of which are noise as the room about them.
Array integers(Random &random, const Shape &values, const Shape &shape) {
    Array array = make_array(random, shape, coin(random) ? 4 : 8, coin(random), 4);
    for (std::byte &byte : array.storage) byte = std::byte(random());
    for (std::size_t i = 0; i < array.size(); ++i) write(array.at(i), values[i]);
    return array;
}

// Small and of any rank; or of many squares, whole and not; or long and thin.
Shape random_extents(Random &random) {
    const auto about = [&] {
        return (pick(random, 1, 4) << pick(random, 0, 4)) + pick(random, -1, 3);
    };
    const Shape all[] = {{about(), about()},
                         {pick(random, 1, 40), pick(random, 1, 25), pick(random, 1, 25)},
                         {pick(random, 1, 4), pick(random, 200, 2000), pick(random, 1, 2)}};
    const int form = pick(random, 0, 5);
    Shape extents = form < 3 ? all[form] : random_shape(random);
    std::shuffle(extents.begin(), extents.end(), random);
    return extents;
}

// Most often of `count` elements.
Shape any_shape(Random &random, int count) {
    const int of = pick(random, 1, 4), form = pick(random, 0, 7);
    if (form == 0) return random_shape(random);
    if (form == 1 && count == 1) return {};
    return count % of ? Shape{count} : form < 4 ? Shape{of, count / of} : Shape{count / of, 1, of};
}

void try_call(Random &random, int k, int wide) {
    RandomResult result(random, {}, 1, true);
    const bool create = result.create, ordered = coin(random), padded = pick(random, 0, 5) != 0;
    const Shape extents = random_extents(random);
    const int total = elements(extents), rank = extents.size(), size = moved_sizes[k];
    const int forms = pick(random, 0, 2) ? 0 : 2, less = pick(random, 0, total);
    const auto form = [&] { return forms ? pick(random, 0, 2) : 0; };
    const int counts[] = {0, less, less, total, total + pick(random, 0, 50)};
    const Operand source(random, k, any_shape(random, counts[pick(random, 0, 4)]), form());
    const int count = source.size(), rest = std::max(total - count, 0);
    const int all[] = {0,        1,        2,        rest - 1, rest,
                       rest + 1, 2 * rest, rest / 2, 7,        pick(random, 0, 70)};
    const Operand pad(random, k, any_shape(random, std::max(all[pick(random, 0, 9)], 0)), form());
    const Operand given(random, k, extents, form());
    const int pads = padded ? pad.size() : 0;
}
