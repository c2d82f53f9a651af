// OpenBLAS for 32-bit x86, taken at run time where it is installed: neither the
// build nor a run needs it.
#pragma once

#include <cstdint>
#include <string>

namespace bench {

// C = alpha x op(A) x op(B) + beta x C, where C is m x n, op(A) is m x k and op is the
// matrix itself ("N") or its transpose ("T").
using Gemm = void(const char *transpose_a, const char *transpose_b, const std::int32_t *m,
                  const std::int32_t *n, const std::int32_t *k, const void *alpha, const void *a,
                  const std::int32_t *lda, const void *b, const std::int32_t *ldb, const void *beta,
                  void *c, const std::int32_t *ldc);

// The routine of that name, such as "dgemm_"; nullptr where OpenBLAS is not installed.
Gemm *openblas(const char *name);

// Version and kernels, or that it was not found.
std::string openblas_version();

} // namespace bench
