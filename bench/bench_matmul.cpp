// The rows of MATMUL: matrices of n x n, vectors of n. The peer's compiler works small
// products out in place; rows named "peer's library" show it calling its library.
#include "data.h"
#include "families.h"
#include "openblas.h"

#include <string>
#include <utility>
#include <vector>

namespace bench {

// ---- Peers ------------------------------------------------------------------

namespace {

using Peer = void(const void *a, const void *b, std::int32_t n, void *result);

struct Peers {
    Peer *o2;
    Peer *o3;
};

struct MatmulPeers {
    Peers compiled;
    Peers calling; // their library, at every size
};

} // namespace

#define PEERS(NAME)                                                                                \
    extern "C" Peer o2_##NAME, o3_##NAME, o2_calling_##NAME, o3_calling_##NAME;                    \
    static constexpr MatmulPeers NAME {                                                            \
        {o2_##NAME, o3_##NAME}, { o2_calling_##NAME, o3_calling_##NAME }                           \
    }

// clang-format off
PEERS(matmul_r4); PEERS(matmul_r8); PEERS(matmul_r10); PEERS(matmul_r16); PEERS(matmul_c8);
PEERS(matmul_c16); PEERS(matmul_c20); PEERS(matmul_c32); PEERS(matmul_i1); PEERS(matmul_i2);
PEERS(matmul_i4); PEERS(matmul_i8); PEERS(matmul_l1); PEERS(matmul_l2); PEERS(matmul_l4);
PEERS(matmul_l8); PEERS(matmul_r8_transposed); PEERS(matmul_r4_vector_matrix);
PEERS(matmul_r8_vector_matrix); PEERS(matmul_i4_vector_matrix); PEERS(matmul_c16_vector_matrix);
PEERS(matmul_r4_matrix_vector); PEERS(matmul_r8_matrix_vector); PEERS(matmul_i4_matrix_vector);
PEERS(matmul_c16_matrix_vector);

namespace {

// ---- Rows -------------------------------------------------------------------

enum class Form { Matrices, TransposedA, VectorMatrix, MatrixVector };

struct Row {
    const char *name;
    f90_Intrinsic *ours;
    MatmulPeers peers;
    const Kind &element;
    Values values;
    Form form;
    const char *gemm; // OpenBLAS's name of the product, if it has it
    std::vector<std::int32_t> sizes;
};

const Row rows[] = {
    {"matmul r4", f90_matmulr4, matmul_r4, real4, Values::Sixteenths, Form::Matrices, "sgemm_", {3, 10, 100, 300, 1000, 2000}},
    {"matmul r8", f90_matmulr8, matmul_r8, real8, Values::Sixteenths, Form::Matrices, "dgemm_", {3, 10, 100, 300, 1000, 2000}},
    {"matmul r10", f90_matmulr10, matmul_r10, real10, Values::Sixteenths, Form::Matrices, nullptr, {10, 100, 300}},
    {"matmul r16", f90_matmulr16, matmul_r16, real16, Values::Sixteenths, Form::Matrices, nullptr, {10, 40, 100}},
    {"matmul c8", f90_matmulc8, matmul_c8, complex8, Values::Sixteenths, Form::Matrices, "cgemm_", {10, 100, 300, 1000}},
    {"matmul c16", f90_matmulc16, matmul_c16, complex16, Values::Sixteenths, Form::Matrices, "zgemm_", {10, 100, 300, 1000}},
    {"matmul c20", f90_matmulc20, matmul_c20, complex20, Values::Sixteenths, Form::Matrices, nullptr, {10, 100, 300}},
    {"matmul c32", f90_matmulc32, matmul_c32, complex32, Values::Sixteenths, Form::Matrices, nullptr, {10, 40, 100}},
    {"matmul i1", f90_matmuli1, matmul_i1, int1, Values::Spread, Form::Matrices, nullptr, {10, 100, 300, 1000}},
    {"matmul i2", f90_matmuli2, matmul_i2, int2, Values::Spread, Form::Matrices, nullptr, {10, 100, 300, 1000}},
    {"matmul i4", f90_matmuli4, matmul_i4, int4, Values::Spread, Form::Matrices, nullptr, {10, 100, 300, 1000}},
    {"matmul i8", f90_matmuli8, matmul_i8, int8, Values::Spread, Form::Matrices, nullptr, {10, 100, 300, 1000}},

    {"matmul l1 true", f90_matmull1, matmul_l1, int1, Values::AllTrue, Form::Matrices, nullptr, {100, 500}},
    {"matmul l2 true", f90_matmull2, matmul_l2, int2, Values::AllTrue, Form::Matrices, nullptr, {100}},
    {"matmul l4 true", f90_matmull4, matmul_l4, int4, Values::AllTrue, Form::Matrices, nullptr, {100, 500}},
    {"matmul l8 true", f90_matmull8, matmul_l8, int8, Values::AllTrue, Form::Matrices, nullptr, {100}},
    {"matmul l1 sparse", f90_matmull1, matmul_l1, int1, Values::Sparse, Form::Matrices, nullptr, {100, 500}},
    {"matmul l2 sparse", f90_matmull2, matmul_l2, int2, Values::Sparse, Form::Matrices, nullptr, {100}},
    {"matmul l4 sparse", f90_matmull4, matmul_l4, int4, Values::Sparse, Form::Matrices, nullptr, {100, 500}},
    {"matmul l8 sparse", f90_matmull8, matmul_l8, int8, Values::Sparse, Form::Matrices, nullptr, {100}},

    {"matmul r8 transposed A", f90_matmulr8, matmul_r8_transposed, real8, Values::Sixteenths, Form::TransposedA, "dgemm_", {300}},

    {"matmul r4 vector x matrix", f90_matmulr4, matmul_r4_vector_matrix, real4, Values::Sixteenths, Form::VectorMatrix, nullptr, {300}},
    {"matmul r8 vector x matrix", f90_matmulr8, matmul_r8_vector_matrix, real8, Values::Sixteenths, Form::VectorMatrix, nullptr, {100, 300, 2000}},
    {"matmul i4 vector x matrix", f90_matmuli4, matmul_i4_vector_matrix, int4, Values::Spread, Form::VectorMatrix, nullptr, {300}},
    {"matmul c16 vector x matrix", f90_matmulc16, matmul_c16_vector_matrix, complex16, Values::Sixteenths, Form::VectorMatrix, nullptr, {300}},
    {"matmul r4 matrix x vector", f90_matmulr4, matmul_r4_matrix_vector, real4, Values::Sixteenths, Form::MatrixVector, nullptr, {300}},
    {"matmul r8 matrix x vector", f90_matmulr8, matmul_r8_matrix_vector, real8, Values::Sixteenths, Form::MatrixVector, nullptr, {100, 300, 2000}},
    {"matmul i4 matrix x vector", f90_matmuli4, matmul_i4_matrix_vector, int4, Values::Spread, Form::MatrixVector, nullptr, {300}},
    {"matmul c16 matrix x vector", f90_matmulc16, matmul_c16_matrix_vector, complex16, Values::Sixteenths, Form::MatrixVector, nullptr, {300}},
};
// clang-format on

constexpr std::int32_t largest_inlined = 30; // by the peer's compiler unless told otherwise
constexpr std::size_t most_bytes = 2000 * 2000 * sizeof(double);

// ---- Running a row ----------------------------------------------------------

struct Storage {
    void *a;
    void *b;
    void *results[contestants];
};

Storage storage_for_all() {
    Storage storage{allocate(most_bytes), allocate(most_bytes), {}};
    for (void *&result : storage.results) result = allocate(most_bytes);
    return storage;
}

f90_ArrDesc transposed(f90_ArrDesc array) {
    std::swap(array.Dim[0], array.Dim[1]);
    array.NONCONTIG = 1;
    return array;
}

// An operand or the result: dense, of n elements or n x n.
f90_ArrDesc operand(void *base, std::int32_t n, std::size_t size, bool is_vector) {
    return is_vector ? vector(base, n, size) : matrix(base, n, n, size);
}

// The product by OpenBLAS, empty where it has none.
Repeated openblas_call(const Row &row, std::int32_t n, const Storage &storage) {
    Gemm *const gemm = row.gemm == nullptr ? nullptr : openblas(row.gemm);
    if (gemm == nullptr) return {};
    struct Factor { // real, or complex with an imaginary part of 0
        alignas(double) std::byte bytes[2 * sizeof(double)];
    };
    Factor one{};
    row.element.put(&one, 1);
    const char *const transpose_a = row.form == Form::TransposedA ? "T" : "N";
    return repeated(
        [=, zero = Factor{}, a = storage.a, b = storage.b, result = storage.results[Reference]] {
            gemm(transpose_a, "N", &n, &n, &n, &one, a, &n, b, &n, &zero, result, &n);
        });
}

void compete(Table &table, const Row &row, std::int32_t n, const std::string &name,
             const std::string &size, const Peers &peers) {
    static const Storage storage = storage_for_all();
    const bool vector_a = row.form == Form::VectorMatrix;
    const bool vector_b = row.form == Form::MatrixVector;
    const bool vector_result = vector_a || vector_b;
    const std::size_t element_size = row.element.size();
    const std::int32_t results = vector_result ? n : n * n;
    fill(row.element, row.values, storage.a, vector_a ? n : n * n, 1);
    fill(row.element, row.values, storage.b, vector_b ? n : n * n, 2);
    spoil(storage.results, static_cast<std::size_t>(results) * element_size);

    f90_ArrDesc a = operand(storage.a, n, element_size, vector_a);
    if (row.form == Form::TransposedA) a = transposed(a);
    f90_ArrDesc b = operand(storage.b, n, element_size, vector_b);
    f90_ArrDesc result = operand(storage.results[Ours], n, element_size, vector_result);
    f90_ArgList list{};
    list.Presence = 1U << 0 | 1U << 1 | 1U << 2; // Result, MATRIX_A, MATRIX_B
    list.Result = slot(result);
    list.Arg1 = slot(a);
    list.Arg2 = slot(b);

    const auto peer_call = [&](Peer *peer, Contestant contestant) {
        return repeated([=, result_base = storage.results[contestant]] {
            peer(storage.a, storage.b, n, result_base);
        });
    };
    // Whatever the order of the sums, these values make them exact.
    const auto agrees = [&](Contestant peer) {
        return same(row.element, storage.results[Ours], storage.results[peer], results, 0);
    };
    run(table, {name,
                size,
                {repeated([&] { row.ours(&list); }), peer_call(peers.o2, PeerO2),
                 peer_call(peers.o3, PeerO3), openblas_call(row, n, storage)},
                agrees});
}

} // namespace

// A filter may name the size too: "matmul r8 300x300".
void bench_matmul(Table &table) {
    for (const Row &row : rows) {
        for (const std::int32_t n : row.sizes) {
            const std::string size = std::to_string(n) + "x" + std::to_string(n);
            const auto run_if_wanted = [&](const std::string &name, const Peers &peers) {
                if (wanted(table, name + " " + size)) compete(table, row, n, name, size, peers);
            };
            run_if_wanted(row.name, row.peers.compiled);
            if (n <= largest_inlined)
                run_if_wanted(row.name + std::string(" peer's library"), row.peers.calling);
        }
    }
}

} // namespace bench
