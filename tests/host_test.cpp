// What surrounds a call: a program's own storage, stacks that are only 4-byte
// aligned, and several threads. A program of its own, since it defines
// f90_getspace and f90_freespace.
#include "support.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <thread>

namespace {
int spaces_taken = 0;
std::size_t bytes_asked = 0;
} // namespace

extern "C" void *f90_getspace(std::size_t bytes) {
    ++spaces_taken;
    bytes_asked = bytes;
    return std::malloc(bytes + 1);
}

extern "C" void f90_freespace(void *space) {
    --spaces_taken;
    std::free(space);
}

namespace {

using namespace test;

TEST(Host, SuppliesTheStorage) {
    std::vector<float> numbers = {1, 2, 3, 4, 5, 6};
    f90_ArrDesc array = over(numbers, {2, 3});
    f90_ArrDesc result = {};
    Call().array(1, array).value(2, 1).created_result(result)(f90_sumr4);
    EXPECT_EQ(spaces_taken, 1);
    EXPECT_EQ(bytes_asked, 12U);
    EXPECT_EQ(static_cast<float *>(result.BASE)[2], 11.0F);
    f90_freespace(result.BASE);

    array = shaped({0, 3}, 4);
    Call().array(1, array).value(2, 2).created_result(result)(f90_sumr4);
    EXPECT_EQ(spaces_taken, 1) << "an empty result asks for storage too";
    EXPECT_EQ(bytes_asked, 0U);
    f90_freespace(result.BASE);
}

// Calls intrinsic with the stack pointer `bytes` below a 16-byte boundary.
void call_on_stack(f90_Intrinsic *intrinsic, Call call, std::uintptr_t bytes) {
    const std::uintptr_t words[] = {reinterpret_cast<std::uintptr_t>(intrinsic),
                                    reinterpret_cast<std::uintptr_t>(&call.list), bytes};
    asm volatile("movl %%esp, %%esi\n\t"
                 "andl $-16, %%esp\n\t"
                 "subl 8(%%edi), %%esp\n\t"
                 "pushl 4(%%edi)\n\t"
                 "call *(%%edi)\n\t"
                 "movl %%esi, %%esp"
                 :
                 : "D"(words)
                 : "esi", "eax", "ecx", "edx", "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5",
                   "xmm6", "xmm7", "memory", "cc");
}

// SUM along dim of a matrix of ones.
template <class T> struct Ones {
    std::vector<T> numbers, sums;
    f90_ArrDesc array, result;

    Ones(int rows, int columns, int dim)
        : numbers(std::size_t(rows * columns), T(1)), sums(std::size_t(dim == 1 ? columns : rows)),
          array(over(numbers, {rows, columns})), result(over(sums, {std::int32_t(sums.size())})) {}
    Call call(int dim) { return Call().checked().array(1, array).value(2, dim).result(result); }
};

TEST(Host, KeepsTheStackOnlyWordAligned) {
    for (const std::uintptr_t bytes : {0U, 4U, 8U, 12U}) {
        for (const int dim : {1, 2}) {
            Ones<double> reals(40, 40, dim);
            call_on_stack(f90_sumr8, reals.call(dim), bytes);
            EXPECT_EQ(reals.sums, std::vector<double>(40, 40.0));
            Ones<std::uint16_t> integers(40, 40, dim);
            call_on_stack(f90_sumi2, integers.call(dim), bytes);
            EXPECT_EQ(integers.sums, std::vector<std::uint16_t>(40, 40));
            Ones<__float128> quads(5, 5, dim);
            call_on_stack(f90_sumr16, quads.call(dim), bytes);
            EXPECT_TRUE(quads.sums[4] == 5);
        }
    }
}

TEST(Host, RunsThreadsOnDifferentData) {
    std::vector<Ones<double>> work;
    for (int t = 0; t < 4; ++t) work.emplace_back(100 + t, 60, 2);
    std::vector<std::thread> threads;
    for (auto &ones : work)
        threads.emplace_back([&ones] {
            for (int i = 0; i < 2000; ++i) ones.call(2)(f90_sumr8);
        });
    for (auto &thread : threads) thread.join();
    for (const auto &ones : work) EXPECT_EQ(ones.sums, std::vector<double>(ones.sums.size(), 60.0));
}

} // namespace
