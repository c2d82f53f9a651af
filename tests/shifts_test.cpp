// CSHIFT and EOSHIFT of every element size against a naive model and the machine's Fortran
// compiler. The storage that this program gives the library is here too, aligned to 4 bytes.
#include "guarded.h"
#include "support.h"

#include <gtest/gtest.h>

namespace test {
int spaces_taken, spaces_given_back;
}
using namespace test;

static std::string journal; // +n for a block of n bytes that was taken, - for one given back
void *f90_getspace(std::size_t bytes) {
    ++spaces_taken;
    journal += "+" + std::to_string(bytes);
    return static_cast<char *>(std::memset(std::malloc(bytes + 4), 'Z', bytes + 4)) + 4;
}
void f90_freespace(void *space) {
    ++spaces_given_back;
    journal += "-";
    std::free(static_cast<char *>(space) - 4);
}
// The sanitizer would tell what that compiler's run-time forgets, and what a fatal end leaves;
// what a call leaves is counted above.
extern "C" const char *__lsan_default_suppressions() {
    return "leak:libgfortran\nleak:f90_getspace";
}
extern "C" const char *__lsan_default_options() { return "print_suppressions=0"; }
extern "C" void fortran_shift(int form, int n, const int *extents, int dim, const int *shift,
                              const char *boundary, const char *array, char *words, char *moved);

namespace {

const int sizes[] = {0, 1, 2, 4, 8, 10, 16, 20, 32}; // 0: any
f90_Intrinsic *const members[] = {
    f90_cshiftn,  f90_cshift1,  f90_cshift2,   f90_cshift4,   f90_cshift8,   f90_cshift10,
    f90_cshift16, f90_cshift20, f90_cshift32,  f90_eoshiftn,  f90_eoshift1,  f90_eoshift2,
    f90_eoshift4, f90_eoshift8, f90_eoshift10, f90_eoshift16, f90_eoshift20, f90_eoshift32};

// A read-only operand next to an inaccessible page. ELSIZE and bounds of what is empty are noise.
struct Operand : Array {
    Guarded pages;
    Operand(Random &random, const Shape &of, int elsize, int unit, int used, const void *values)
        : Array(make_array(random, of, std::max(elsize, 1), coin(random), coin(random) ? unit : 0)),
          pages(storage.size()) {
        std::byte *const start = coin(random) ? pages.begin() : pages.end() - storage.size();
        for (std::size_t i = 0; i < size(); ++i)
            std::memcpy(start + offsets[i], static_cast<const char *>(values) + i * used, used);
        mprotect(pages.begin(), pages.size, PROT_READ);
        if (size() != 0) descriptor.BASE = start + offsets[0];
        for (auto &dim : descriptor.Dim) dim.Upper -= pick(random, 0, 3) * (dim.Upper < dim.Lower);
        descriptor.ELSIZE = random();
    }
};

void try_random_call(Random &random, bool circular, int size, f90_Intrinsic *member) {
    SCOPED_TRACE(size);
    const int moved = size == 0 ? pick(random, 0, 100) : size; // what follows is padding
    const int elsize = moved + pick(random, 0, 1) * (size == 10 ? 2 : size == 20 ? 4 : 0);
    Shape shape = circular || pick(random, 0, 15) != 0 ? random_shape(random) : Shape{};
    const int rank = shape.size(), dim = pick(random, rank > 0, rank);
    const int length = rank == 0 ? 1 : shape[dim - 1];
    const int below = elements(Shape(shape.begin(), shape.begin() + std::max(dim - 1, 0)));
    const Shape lines = rank > 1 ? without(shape, dim) : Shape(pick(random, 0, 7), 2);
    const bool bounded = !circular && coin(random), far = pick(random, 0, 3) == 0;
    const Shape of_shift = coin(random) ? lines : Shape{};
    const Shape of_boundary = bounded && coin(random) ? lines : Shape{};
    std::vector<int> shifts(elements(of_shift));
    for (int &s : shifts)
        s = far ? std::array{INT32_MIN, INT32_MAX, int(random())}[pick(random, 0, 2)]
                : length * pick(random, -3, 3) + pick(random, -length, length) * pick(random, 0, 1);
    std::string all(elements(shape) * elsize, 0), edges(elements(of_boundary) * elsize, 0);
    for (char &byte : all) byte = random();
    for (char &byte : edges) byte = bounded ? random() : size == 0 ? ' ' : 0;
    Operand array(random, shape, elsize, 1, elsize, all.data());
    Operand shift(random, of_shift, 4 * pick(random, 1, 3), 4, 4, shifts.data());
    Operand boundary(random, of_boundary, elsize, 1, elsize, edges.data());
    RandomResult result(random, shape, std::max(elsize, 1), true, coin(random));
    array.descriptor.ELSIZE = result.given.descriptor.ELSIZE = elsize;
    Call call = Call().array(1, array.descriptor).array(2, shift.descriptor);
    call.array(3, boundary.descriptor, bounded).list.Flags = random();
    if (dim != 1 || coin(random)) call.value(circular ? 3 : 4, rank ? dim : pick(random, -9, 9));
    result.attach(call);
    journal.clear();
    call(member);
    const int form = circular ? 0 : bounded ? 1 : size == 0 ? 9 : size == 4 ? 17 : 1;
    const std::string made = result.create ? "+" + std::to_string(all.size()) : "";
    ASSERT_EQ(journal, form == 9 ? "+" + std::to_string(elsize) + made + "-" : made);

    std::string right, theirs = all;
    for (std::size_t i = 0; i < array.size(); ++i) {
        const int line = result_index(shape, dim, i), place = position_along(shape, dim, i) - 1;
        std::int64_t from = std::int64_t{shifts[line % shifts.size()]} + place;
        if (circular) from = (from % length + length) % length;
        const bool inside = from >= 0 && from < length;
        const std::size_t at = inside ? i + (from - place) * below : line % boundary.size();
        right.append(inside ? all : edges, at * elsize, elsize);
        ASSERT_EQ(std::memcmp(result.at(i), &right[i * elsize], moved), 0) << "element " << i;
    }
    ASSERT_EQ(result.complaint(elsize), "");
    if (far || rank == 0 || rank > 3) return; // that compiler's own shifts do not go far
    shape.resize(3, 1);
    fortran_shift(form + 2 * !of_shift.empty() + 4 * !of_boundary.empty(), elsize, shape.data(),
                  dim, shifts.data(), edges.data(), all.data(), theirs.data(), theirs.data());
    ASSERT_TRUE(right == theirs);
}

TEST(Shifts, AgreeWithModelAndFortran) {
    Random random(random_seed());
    for (int i = 0; i < random_rounds(5400) && !HasFatalFailure(); ++i)
        try_random_call(random, i % 18 < 9, sizes[i % 9], members[i % 18]);
}

TEST(Shifts, ReportMisuse) {
    std::tuple<int, int, Shape, Shape, Shape, const char *, std::string, const char *> cases[] = {
        {~1, 4, {9}, {9}, {9}, "C", wrong_dim(4, 3), ""},
        {~1, 2, {9, 9}, {9, 9}, {9, 9, 9}, "", "", ""},
        {1, 0, {9, 9}, {9, 9}, {9, 9, 9}, "CE", wrong_dim(0, 3), ""},
        {1, 4, {9, 9}, {9, 9}, {}, "CE", wrong_dim(4, 3), ""},
        {1, 2, {9, 9}, {9, 9}, {3, 1, 4}, "CE", wrong_result("3, 1, 4", "3, 0, 4"), "RESULT"},
        {1, 2, {3, 5}, {9, 9}, {}, "CE", wrong_result("3, 5", "3, 4"), "SHIFT"},
        {1, 1, {0, 4, 7}, {1, 4}, {3, 0, 4}, "E", wrong_result("1, 4", "0, 4"), "BOUNDARY"}};
    static const f90_ArrDesc unmade = {}; // read-only, as a result must be before checks
    for (int i = 0; i < 18; ++i)
        for (auto [flags, dim, of_shift, of_boundary, of_result, who, message, where] : cases) {
            const std::string name = i < 9 ? "CSHIFT" : "EOSHIFT";
            for (std::size_t at = 0; (at = message.find("RESULT", at)) != message.npos; ++at)
                message.replace(at, 6, where);
            std::vector<int> word(1);
            f90_ArrDesc array = shaped({3, 0, 4}, sizes[i % 9]), given = shaped(of_result, 1);
            f90_ArrDesc s = over(word, of_shift), b = over(word, of_boundary);
            Call call = Call().array(1, array).array(2, s).array(3, b);
            call.value(name == "CSHIFT" ? 3 : 4, dim).list.Flags = flags;
            call.slot(0, std::uintptr_t(of_result.empty() ? &unmade : &given), !of_result.empty());
            EXPECT_EQ(fatal_message([&] { call(members[i]); }),
                      std::strchr(who, name[0]) ? report(name, message) : "status 0: ");
        }
}

} // namespace
