/* Sums an array through the installed header and library, in C99. */
#include <quillfn/quillfn.h>
#include <stdio.h>

int main(void) {
    double numbers[3] = {1, 2, 4};
    double sum = 0;
    f90_ArrDesc array = {numbers, numbers, 3, 8, 8, 1, 0, {0, 0}, {{0, 2, 1}}};
    f90_ArrDesc result = {&sum, &sum, 1, 8, 8, 0, 0, {0, 0}, {{0, 0, 0}}};
    f90_ArgList call = {0, 3, 0, {0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}};
    call.Result.Word0 = (uintptr_t)&result;
    call.Arg1.Word0 = (uintptr_t)&array;
    f90_sumr8(&call);
    printf("%g\n", sum);
    return sum == 7 ? 0 : 1;
}
