// The benchmark's harness: a contest times one call of the library beside the
// same work of two peers, and of a reference where there is one (OpenBLAS, memcpy),
// and becomes one row of the table. Descriptors for the library's calls are made here too.
#pragma once

#include "quillfn/quillfn.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace bench {

// ---- Contests ---------------------------------------------------------------

// The same call made a number of times.
using Repeated = std::function<void(long times)>;

// The loop stands inside of the function object, so that a call through the
// object costs a short call nothing.
template <class Call> Repeated repeated(Call call) {
    return [call](long times) mutable {
        for (; times > 0; --times) call();
    };
}

enum Contestant { Ours, PeerO2, PeerO3, Reference, contestants };

// The peer whose time the ratio is about.
enum class Rival { Better, O2 };

struct Contest {
    std::string name;
    std::string size;
    Repeated calls[contestants]; // that of the reference may be empty
    // Whether the answer that a peer or the reference left behind is as it should be.
    std::function<bool(Contestant peer)> agrees;
    Rival rival = Rival::Better;
    const char *reference = "OpenBLAS";
};

struct Table {
    const char *filter; // part of the names of the rows to run
    int rows = 0;
    int slower_rows = 0; // whose ratio is below 1
};

// Whether the row is to be run: to be asked before its data are made.
bool wanted(const Table &table, const std::string &name);

// What a contestant fails to write differs from the others' results.
void spoil(void *const (&results)[contestants], std::size_t bytes);

void print_heading();

// Times the contest and prints its row. Answers that differ end the process.
void run(Table &table, const Contest &contest);

void print_summary(const Table &table);

// ---- Descriptors ------------------------------------------------------------

// The storage of a scalar result.
f90_ArrDesc scalar(void *base, std::size_t elsize);

// `count` elements, `stride` elements apart; dense when that is 1.
f90_ArrDesc vector(void *base, std::int32_t count, std::size_t elsize, std::int32_t stride = 1);

// A matrix, column after column, with rows `stride` elements apart; dense when that is 1.
f90_ArrDesc matrix(void *base, std::int32_t rows, std::int32_t columns, std::size_t elsize,
                   std::int32_t stride = 1);

// A descriptor's address as an argument.
f90_Slot slot(f90_ArrDesc &array);

// A 32-bit value as an argument.
f90_Slot slot(std::int32_t value);

} // namespace bench
