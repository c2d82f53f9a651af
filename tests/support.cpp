// See support.h. Nothing here calls the library but to free a result.
#include "support.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>

namespace test {

static int from_environment(const char *name, int otherwise) {
    const char *text = std::getenv(name);
    return text == nullptr ? otherwise : std::atoi(text);
}

unsigned random_seed() { return unsigned(from_environment("QUILLFN_SEED", 1)); }
int random_rounds(int usual) { return usual * from_environment("QUILLFN_ROUNDS", 1); }
std::uint32_t step_through_all(int usual) {
    return std::uint32_t(from_environment("QUILLFN_STEP", usual));
}

// ---- Arrays -----------------------------------------------------------------

std::size_t elements(const Shape &shape) {
    std::size_t count = 1;
    for (const std::int32_t extent : shape) count *= std::size_t(extent);
    return count;
}

Array make_array(Random &random, const Shape &shape, int elsize, bool spaced, int unit, int guard) {
    if (!spaced || unit == 0) unit = elsize;
    Array array;
    array.shape = shape;
    f90_ArrDesc &d = array.descriptor;
    d.RANK = static_cast<std::int8_t>(shape.size());
    d.ELSIZE = elsize;
    d.SCALEFACTOR = unit;
    d.EXTENT = static_cast<std::int32_t>(elements(shape));
    d.NONCONTIG =
        static_cast<std::uint8_t>(spaced || pick(random, 0, 3) == 0 ? pick(random, 1, 255) : 0);

    std::ptrdiff_t lowest = 0; // bytes from the first element
    std::ptrdiff_t highest = 0;
    std::int32_t stride = elsize / unit;
    for (std::size_t i = 0; i < shape.size(); ++i) {
        if (spaced) stride += pick(random, 0, 2) * (elsize / unit) + (unit < elsize ? 1 : 0);
        const bool backwards = spaced && pick(random, 0, 2) == 0;
        const std::int32_t lower = pick(random, -5, 5);
        d.Dim[i] = {lower, lower + shape[i] - 1, backwards ? -stride : stride};
        const std::ptrdiff_t reach =
            std::ptrdiff_t{d.Dim[i].Stride} * unit * std::max(shape[i] - 1, 0);
        (reach < 0 ? lowest : highest) += reach;
        if (shape[i] != 0 || (!spaced && coin(random))) stride *= shape[i];
    }
    const int shift = pick(random, 0, 3) * std::min(elsize, 4);
    array.storage.assign(static_cast<std::size_t>(highest - lowest + elsize + shift + 2 * guard),
                         std::byte{0xA5});
    const std::ptrdiff_t first = guard + shift - lowest;

    Shape subscripts(shape.size(), 0);
    for (std::size_t n = 0; n < elements(shape); ++n) {
        std::ptrdiff_t offset = first;
        for (std::size_t i = 0; i < shape.size(); ++i)
            offset += std::ptrdiff_t{subscripts[i]} * d.Dim[i].Stride * unit;
        array.offsets.push_back(offset);
        for (std::size_t i = 0; i < shape.size() && ++subscripts[i] == shape[i]; ++i)
            subscripts[i] = 0;
    }
    d.BASE = array.size() == 0 ? nullptr : array.storage.data() + first;
    std::uintptr_t zero = reinterpret_cast<std::uintptr_t>(d.BASE);
    for (std::size_t i = 0; i < shape.size(); ++i)
        zero -=
            std::uintptr_t(d.Dim[i].Lower) * std::uintptr_t(d.Dim[i].Stride) * std::uintptr_t(unit);
    d.ZERO = reinterpret_cast<void *>(zero);
    return array;
}

void fill(Random &random, Array &array, WriteSort *write_sort) {
    static const std::string most[] = {"o", "f", "c", "s", "+-", "+-", "+-", "n",
                                       "i", "j", "h", "l", "=",  "<",  ">"};
    static const std::string some[] = {"", "", "o", "f", "n", "n", "i", "j", "h", "l"};
    std::string mixture;
    const std::string &sorts = most[pick(random, 0, int(std::size(most)) - 1)];
    for (int times = 1 << pick(random, 0, 4); times > 0; --times) mixture += sorts;
    for (int times = 2; times > 0; --times)
        mixture += some[pick(random, 0, int(std::size(some)) - 1)];
    const auto put = [&](int i, const std::string &of) {
        const char sort = of[std::size_t(pick(random, 0, int(of.size()) - 1))];
        write_sort(random, array.at(std::size_t(i)), sort, i);
    };
    const int last = int(array.size()) - 1;
    for (int i = 0; i <= last; ++i) put(i, mixture);
    for (int singles = last < 0 ? 0 : pick(random, 0, 4); singles > 0; --singles) {
        const int grain = 1 << pick(random, 2, 16);
        const int boundary = grain * pick(random, 0, last / grain) + pick(random, -1, 1);
        const int place = coin(random) ? boundary : coin(random) ? 0 : last - pick(random, 0, 3);
        put(std::clamp(place, 0, last), "nnhlij+-c");
    }
}

Shape random_shape(Random &random) {
    Shape shape(std::size_t(pick(random, 1, 7)));
    const int most = shape.size() > 4 ? 3 : 6;
    const int least = pick(random, 0, 3) == 0 ? 0 : 1;
    for (auto &extent : shape) extent = pick(random, least, most);
    if (shape.size() > 3 || coin(random)) return shape;
    auto &longest = shape[std::size_t(pick(random, 0, int(shape.size()) - 1))];
    longest = pick(random, 0, 300);
    if (pick(random, 0, 7) == 0) {
        for (auto &extent : shape) extent = pick(random, 1, 3);
        longest = pick(random, 1000, 6000);
    }
    return shape;
}

Shape without(const Shape &shape, int dim) {
    Shape rest = shape;
    rest.erase(rest.begin() + dim - 1);
    return rest;
}

std::size_t result_index(const Shape &shape, int dim, std::size_t i) {
    std::size_t index = 0;
    std::size_t weight = 1;
    for (std::size_t d = 0; dim != 0 && d < shape.size(); ++d) {
        const auto extent = std::size_t(shape[d]);
        if (int(d) != dim - 1) {
            index += i % extent * weight;
            weight *= extent;
        }
        i /= extent;
    }
    return index;
}

std::size_t position_along(const Shape &shape, int dim, std::size_t i) {
    for (int d = 0; d < dim - 1; ++d) i /= std::size_t(shape[std::size_t(d)]);
    return (dim == 0 ? i : i % std::size_t(shape[std::size_t(dim - 1)])) + 1;
}

Array random_mask(Random &random, const Shape &shape, MaskKind kind) {
    if (kind == MaskKind::True || kind == MaskKind::False) {
        Array mask = make_array(random, {}, 4, false);
        mask.descriptor.EXTENT = pick(random, 0, 1);
        write(mask.at(0), kind == MaskKind::True ? 1U << pick(random, 0, 31) : 0U);
        return mask;
    }
    Array mask = make_array(random, shape, 4, coin(random));
    const int quarters = pick(random, 0, 4);
    for (std::size_t i = 0; i < mask.size(); ++i)
        write(mask.at(i), pick(random, 1, 4) <= quarters ? 1U << pick(random, 0, 31) : 0U);
    return mask;
}

bool selects(MaskKind kind, Array &mask, std::size_t i) {
    if (kind != MaskKind::Array) return kind != MaskKind::False;
    return read<std::uint32_t>(mask.at(i)) != 0;
}

std::string strays(const Array &array, const std::vector<std::byte> &before, int used, int parts,
                   int part) {
    std::vector<std::byte> now = array.storage;
    for (const std::ptrdiff_t offset : array.offsets)
        for (int p = 0; p < parts; ++p)
            std::copy_n(before.begin() + offset + p * part, used, now.begin() + offset + p * part);
    const auto found = std::mismatch(now.begin(), now.end(), before.begin());
    if (found.first == now.end()) return "";
    return "byte " + std::to_string(found.first - now.begin()) + " of the storage was written";
}

f90_ArrDesc scalar(void *value, int elsize) {
    f90_ArrDesc d = {};
    d.ZERO = d.BASE = value;
    d.EXTENT = 1;
    d.ELSIZE = d.SCALEFACTOR = elsize;
    return d;
}

f90_ArrDesc shaped(const Shape &extents, int elsize) {
    f90_ArrDesc d = scalar(nullptr, elsize);
    for (const std::int32_t extent : extents) {
        d.Dim[d.RANK++] = {1, extent, d.EXTENT};
        d.EXTENT *= extent;
    }
    return d;
}

// ---- Results ----------------------------------------------------------------

RandomResult::RandomResult(Random &random, const Shape &shape, int elsize, bool may_create,
                           int unit)
    : given(make_array(random, shape, elsize, coin(random), unit, 64)), before(given.storage),
      create(may_create && coin(random)) {
    std::memset(&created, 0x5A, sizeof created);
}

void RandomResult::attach(Call &call) {
    create ? call.created_result(created) : call.result(given.descriptor);
}

const std::byte *RandomResult::at(std::size_t i) const {
    if (!create) return given.storage.data() + given.offsets[i];
    return static_cast<std::byte *>(created.BASE) + i * std::size_t(given.descriptor.ELSIZE);
}

std::string RandomResult::complaint(int used, int parts, int part) {
    if (!create) return strays(given, before, used, parts, part);
    f90_freespace(created.BASE);
    bool right = created.RANK == given.descriptor.RANK && created.NONCONTIG == 0 &&
                 created.ELSIZE == given.descriptor.ELSIZE &&
                 created.EXTENT == given.descriptor.EXTENT;
    for (std::size_t i = 0; i < given.shape.size(); ++i)
        right = right && created.Dim[i].Lower == 1 && created.Dim[i].Upper == given.shape[i];
    return right ? "" : "the created descriptor is wrong";
}

// ---- Processes --------------------------------------------------------------

static std::string contents(std::FILE *file) {
    std::rewind(file);
    std::string text(1 << 16, ' ');
    text.resize(std::fread(text.data(), 1, text.size(), file));
    std::fclose(file);
    return text;
}

Outcome in_child(const std::function<void()> &body) {
    std::FILE *out = std::tmpfile();
    std::FILE *err = std::tmpfile();
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        dup2(fileno(out), STDOUT_FILENO);
        dup2(fileno(err), STDERR_FILENO);
        body();
        std::fflush(nullptr);
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contents(out), contents(err)};
}

std::string fatal_message(const std::function<void()> &body) {
    const auto [status, out, err] = in_child(body);
    return status == 1 ? err : "status " + std::to_string(status) + ": " + err;
}

// ---- Messages ---------------------------------------------------------------

std::string report(const std::string &name, const std::string &message) {
    return "ERROR calling the intrinsic subprogram " + name + ":\n" + message;
}

std::string report_of_unknown(const std::string &name) {
    return "ERROR calling the error handler by the\n intrinsic subprogram, signed by " + name +
           ".\n";
}

std::string wrong_dim(int dim, int rank) {
    return " The DIM parameter had a value of " + std::to_string(dim) +
           ".\n Its value should be at least 1 and no larger than " + std::to_string(rank) + ".\n";
}

std::string wrong_mask(const std::string &array, const std::string &mask) {
    const std::string argument = " The shape of argument ";
    return " Array arguments ARRAY and MASK should have the same shape.\n" + argument +
           "ARRAY is: (" + array + ").\n" + argument + "MASK is:  (" + mask + ").\n";
}

std::string wrong_result(const std::string &result, const std::string &expected) {
    return " The RESULT array has shape:    (" + result + ").\n The shape of RESULT should be: (" +
           expected + ").\n";
}

} // namespace test
