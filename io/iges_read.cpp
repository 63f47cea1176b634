// Reading IGES files: records, sections, the Global delimiters, Directory
// entries and free-format Parameter Data, handed to the entity converters.
//
// The whole file is read and converted on a private context first; only a
// file that has been read completely is copied to the caller's context.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string_view>

#include "core/arith.hpp"
#include "core/error.hpp"
#include "core/records.hpp"
#include "core/storage.hpp"
#include "io/iges.hpp"
#include "io/numbers.hpp"
#include "knotwork/arith.h"
#include "knotwork/iges.h"
#include "knotwork/numeric.h"

using namespace kw;
using namespace kw::iges;

namespace {

char name[] = "U_INPIGS";

constexpr int64_t kMaxIndex = std::numeric_limits<int32_t>::max();
constexpr int64_t kFirstChunk = 1 << 16;

// ---- Characters on a storage context ----------------------------------------
// Text is held in arrays of doubles, so that it too comes from the context's
// allocators (and their failures are reported like any other).

char *get_chars(int64_t count, StorageStacks *stk) noexcept {
    const int64_t n = (count + 7) / 8 - 1;
    if (n < 0 || n > kMaxIndex) {
        E_seterr(KW_EFILE, name);
        return nullptr;
    }
    return reinterpret_cast<char *>(S_getr1d(static_cast<int32_t>(n), stk));
}

void kill_chars(char *c, StorageStacks *stk) noexcept {
    U_kilr1d(reinterpret_cast<double *>(c), stk);
}

// The whole stream, read as it comes.
int16_t load(FILE *f, std::string_view *text, StorageStacks *stk) noexcept {
    char *buf = nullptr;
    int64_t size = 0, held = 0;
    for (;;) {
        if (size == held) {
            const int64_t want = std::max(kFirstChunk, 2 * held);
            char *bigger = get_chars(want, stk);
            if (!bigger) return 1;
            if (size > 0) std::memcpy(bigger, buf, static_cast<std::size_t>(size));
            kill_chars(buf, stk);
            buf = bigger;
            held = want;
        }
        const std::size_t got = std::fread(buf + size, 1, static_cast<std::size_t>(held - size), f);
        if (got == 0) break;
        size += static_cast<int64_t>(got);
    }
    if (std::ferror(f)) return fail(KW_EFILE, name);
    *text = std::string_view(buf, static_cast<std::size_t>(size));
    return 0;
}

// ---- Fixed columns ---------------------------------------------------------------

bool blank(char c) noexcept { return c == ' ' || c == '\t' || c == '\r' || c == '\x1a'; }

std::string_view trim(std::string_view s) noexcept {
    while (!s.empty() && blank(s.front())) s.remove_prefix(1);
    while (!s.empty() && blank(s.back())) s.remove_suffix(1);
    return s;
}

// A whole number in fixed columns; blank columns read 0.
bool column_integer(const char *record, int first, int width, int64_t *v) noexcept {
    const std::string_view s = trim(std::string_view(record + first, static_cast<std::size_t>(width)));
    if (s.empty()) {
        *v = 0;
        return true;
    }
    return io::parse_integer(s, v);
}

// ---- Records ----------------------------------------------------------------------

// The file as 80-column records, blank-padded, one after the other.
struct Records {
    char *text = nullptr;
    int32_t count = 0;
    const char *at(int32_t i) const noexcept { return text + static_cast<int64_t>(i) * kRecord; }
};

// Calls take(line, length) for every record of the file: a line of 73 to 80
// columns, or a line of whole 80-column records written without line ends.
// Blank lines are passed over.
template <class Take>
int16_t each_record(std::string_view file, Take take) noexcept {
    std::size_t i = 0;
    while (i < file.size()) {
        std::size_t end = file.find('\n', i);
        if (end == std::string_view::npos) end = file.size();
        const std::string_view line = file.substr(i, end - i);
        i = end + 1;
        if (trim(line).empty()) continue;
        std::size_t length = line.size();
        if (line.back() == '\r') --length;
        if (length > kLetter && length <= kRecord) {
            take(line.data(), length);
        } else if (length > kRecord && length % kRecord == 0) {
            for (std::size_t k = 0; k < length; k += kRecord) take(line.data() + k, kRecord);
        } else {
            return fail(KW_EFILE, name);
        }
    }
    return 0;
}

int16_t split(std::string_view file, Records *records, StorageStacks *stk) noexcept {
    int64_t count = 0;
    if (each_record(file, [&](const char *, std::size_t) { ++count; })) return 1;
    if (count == 0) return fail(KW_EFILE, name);
    if (count > kMaxIndex) return fail(KW_EFILE, name);
    char *text = get_chars(count * kRecord, stk);
    if (!text) return 1;
    char *to = text;
    each_record(file, [&](const char *line, std::size_t length) {
        std::memcpy(to, line, length);
        std::memset(to + length, ' ', kRecord - length);
        to += kRecord;
    });
    *records = Records{text, static_cast<int32_t>(count)};
    return 0;
}

// ---- Sections ---------------------------------------------------------------------

struct Sections {
    int32_t first[kSections] = {};
    int32_t count[kSections] = {};
};

int section_of(char letter) noexcept {
    const char *at = std::find(kSectionLetter, kSectionLetter + kSections, letter);
    return at == kSectionLetter + kSections ? -1 : static_cast<int>(at - kSectionLetter);
}

// The Terminate record counts the records of the other four sections and
// is record 1 of its own.
bool terminate_ok(const Records &r, const Sections &sec) noexcept {
    const char *t = r.at(sec.first[kTerminate]);
    for (int s = 0; s < kTerminate; ++s) {
        int64_t count;
        if (t[s * kField] != kSectionLetter[s] ||
            !column_integer(t, s * kField + 1, kSequenceWidth, &count) || count != sec.count[s])
            return false;
    }
    int64_t sequence;
    return column_integer(t, kSequence, kSequenceWidth, &sequence) && sequence == 1;
}

int16_t find_sections(const Records &r, Sections *sec) noexcept {
    int current = kStart;
    for (int32_t i = 0; i < r.count; ++i) {
        const int s = section_of(r.at(i)[kLetter]);
        if (s < current) return fail(KW_EFILE, name);
        for (int later = current + 1; later <= s; ++later) sec->first[later] = i;
        current = s;
        ++sec->count[s];
    }
    if (sec->count[kGlobal] == 0 || sec->count[kTerminate] != 1 || sec->count[kDirectory] % 2 != 0 ||
        !terminate_ok(r, *sec))
        return fail(KW_EFILE, name);
    return 0;
}

// Columns [0, width) of `count` records from `first`, end to end.
int16_t gather(const Records &r, int32_t first, int32_t count, int width, std::string_view *out,
               StorageStacks *stk) noexcept {
    char *text = get_chars(std::max<int64_t>(1, static_cast<int64_t>(count) * width), stk);
    if (!text) return 1;
    for (int32_t k = 0; k < count; ++k)
        std::memcpy(text + static_cast<int64_t>(k) * width, r.at(first + k), width);
    *out = std::string_view(text, static_cast<std::size_t>(count) * width);
    return 0;
}

// ---- Free-format fields -------------------------------------------------------------

// The fields of one record of free-format data: numbers (E or D exponents),
// Hollerith strings (nHxxx), or empty, separated by the parameter delimiter
// and closed by the record delimiter.
class Fields {
public:
    enum Kind { kEmpty, kNumber, kString, kBad };

    Fields(std::string_view text, char pd, char rd) noexcept : text_(text), pd_(pd), rd_(rd) {}

    // The next field; *last tells whether the record delimiter closed it.
    Kind next(double *value, bool *last) noexcept {
        skip_blanks();
        Kind kind;
        std::size_t count;
        if (hollerith(&count)) {
            skip_blanks();
            kind = kString;
        } else {
            std::size_t end = pos_;
            while (end < text_.size() && text_[end] != pd_ && text_[end] != rd_) ++end;
            const std::string_view token = trim(text_.substr(pos_, end - pos_));
            pos_ = end;
            *value = 0.0;
            kind = token.empty() ? kEmpty : number(token, value) ? kNumber : kBad;
        }
        if (kind == kBad || pos_ >= text_.size()) return kBad;
        const char delimiter = text_[pos_++];
        if (delimiter != pd_ && delimiter != rd_) return kBad;
        *last = delimiter == rd_;
        return kind;
    }

    // A Hollerith string of exactly one character ("1Hc") at the start.
    bool one_character(char *c) noexcept {
        skip_blanks();
        std::size_t count;
        if (!hollerith(&count) || count != 1) return false;
        *c = text_[pos_ - 1];
        skip_blanks();
        return true;
    }

    // The character at the current position, or 0 at the end.
    char peek() const noexcept { return pos_ < text_.size() ? text_[pos_] : '\0'; }
    void advance() noexcept { ++pos_; }
    void set_delimiters(char pd, char rd) noexcept {
        pd_ = pd;
        rd_ = rd;
    }

private:
    void skip_blanks() noexcept {
        while (pos_ < text_.size() && text_[pos_] == ' ') ++pos_;
    }

    // "nH" at the position: moves past it and the n characters that follow.
    bool hollerith(std::size_t *count) noexcept {
        std::size_t i = pos_, n = 0;
        while (i < text_.size() && text_[i] >= '0' && text_[i] <= '9' && i - pos_ < 9)
            n = 10 * n + static_cast<std::size_t>(text_[i++] - '0');
        if (i == pos_ || i >= text_.size() || text_[i] != 'H') return false;
        if (n > text_.size() - (i + 1)) return false;
        pos_ = i + 1 + n;
        *count = n;
        return true;
    }

    // An IGES number: a decimal with an exponent written E or D.
    static bool number(std::string_view token, double *value) noexcept {
        char buf[io::kNumberRoom];
        if (token.size() > sizeof buf) return false;
        std::transform(token.begin(), token.end(), buf,
                       [](char c) { return c == 'D' || c == 'd' ? 'E' : c; });
        return io::parse_real(std::string_view(buf, token.size()), false, value);
    }

    std::string_view text_;
    char pd_, rd_;
    std::size_t pos_ = 0;
};

// Delimiters may not be characters that a number or a string starts with.
bool delimiter_ok(char c) noexcept {
    return c > ' ' && c < 127 && !(c >= '0' && c <= '9') && !std::strchr("+-.DEH", c);
}

// The Global section: its delimiters (fields 1 and 2, "1Hc" or empty for the
// defaults), then every field up to the record delimiter, which must parse.
int16_t read_global(std::string_view text, char *pd, char *rd) noexcept {
    Fields fields(text, kParamDelimiter, kRecordDelimiter);
    *pd = kParamDelimiter;
    *rd = kRecordDelimiter;
    if (fields.peek() != kParamDelimiter && !fields.one_character(pd)) return fail(KW_EFILE, name);
    if (fields.peek() != *pd) return fail(KW_EFILE, name);
    fields.advance();
    if (fields.peek() != *pd && fields.peek() != kRecordDelimiter && !fields.one_character(rd))
        return fail(KW_EFILE, name);
    if (!delimiter_ok(*pd) || !delimiter_ok(*rd) || *pd == *rd) return fail(KW_EFILE, name);
    fields.set_delimiters(*pd, *rd);
    bool last = fields.peek() == *rd;
    if (!last && fields.peek() != *pd) return fail(KW_EFILE, name);
    fields.advance();
    double value;
    while (!last)
        if (fields.next(&value, &last) == Fields::kBad) return fail(KW_EFILE, name);
    return 0;
}

// ---- Directory entries ----------------------------------------------------------------

struct Entry {
    int64_t type, pointer, matrix, lines, form;
};

struct Model {
    Records records;
    Sections sec;
    char pd = kParamDelimiter, rd = kRecordDelimiter;
    int32_t entries = 0;

    const char *directory(int32_t e, int record) const noexcept {
        return records.at(sec.first[kDirectory] + 2 * e + record);
    }
    bool field(int32_t e, DirectoryField f, int64_t *v) const noexcept {
        return column_integer(directory(e, f.record), f.field * kField, kField, v);
    }
    // Entry e; false when a field is malformed or the two records disagree.
    bool entry(int32_t e, Entry *en) const noexcept {
        int64_t type2;
        return field(e, kEntityType, &en->type) && field(e, kParamPointer, &en->pointer) &&
               field(e, kMatrixPointer, &en->matrix) && field(e, kEntityType2, &type2) &&
               field(e, kParamLines, &en->lines) && field(e, kForm, &en->form) &&
               type2 == en->type;
    }
};

int16_t parse(std::string_view file, Model *model, StorageStacks *stk) noexcept {
    if (split(file, &model->records, stk) || find_sections(model->records, &model->sec)) return 1;
    const Sections &sec = model->sec;
    std::string_view global;
    if (gather(model->records, sec.first[kGlobal], sec.count[kGlobal], kData, &global, stk) ||
        read_global(global, &model->pd, &model->rd))
        return 1;
    model->entries = sec.count[kDirectory] / 2;
    Entry en;
    for (int32_t e = 0; e < model->entries; ++e)
        if (!model->entry(e, &en)) return fail(KW_EFILE, name);
    return 0;
}

// The numeric parameters of entry e after its type number: *par[0..*np] on
// stk (np is -1 when there are none).
int16_t read_parameters(const Model &model, int32_t e, const Entry &en, double **par, int32_t *np,
                        StorageStacks *stk) noexcept {
    const Sections &sec = model.sec;
    if (en.pointer < 1 || en.lines < 1 || en.pointer - 1 + en.lines > sec.count[kParameter])
        return fail(KW_EARG, name);
    const auto first = static_cast<int32_t>(sec.first[kParameter] + en.pointer - 1);
    const auto lines = static_cast<int32_t>(en.lines);
    for (int32_t k = 0; k < lines; ++k) {
        int64_t back;
        if (!column_integer(model.records.at(first + k), kBackPointer, kSequenceWidth, &back) ||
            back != 2 * static_cast<int64_t>(e) + 1)
            return fail(KW_EFILE, name);
    }
    std::string_view text;
    if (static_cast<int64_t>(lines) * kParamData > kMaxIndex) return fail(KW_EFILE, name);
    if (gather(model.records, first, lines, kParamData, &text, stk)) return 1;
    // A field takes at least its delimiter: the text bounds their number.
    double *values = S_getr1d(static_cast<int32_t>(text.size()), stk);
    if (!values) return 1;
    Fields fields(text, model.pd, model.rd);
    double type;
    bool last = false;
    if (fields.next(&type, &last) != Fields::kNumber || type != static_cast<double>(en.type))
        return fail(KW_EFILE, name);
    int32_t count = 0;
    while (!last) {
        const Fields::Kind kind = fields.next(&values[count], &last);
        if (kind == Fields::kBad || kind == Fields::kString) return fail(KW_EFILE, name);
        ++count;
    }
    *par = values;
    *np = count - 1;
    return 0;
}

// ---- Conversion -----------------------------------------------------------------------

using CurveConverter = int16_t (*)(const double *, int32_t, Curve *, StorageStacks *);
using SurfaceConverter = int16_t (*)(const double *, int32_t, Surface *, StorageStacks *);

// The entities that become curves and surfaces; a new converter is one more
// row. Transformation matrices (124) are handled on their own.
struct CurveEntity {
    int32_t type;
    CurveConverter convert;
};
struct SurfaceEntity {
    int32_t type;
    SurfaceConverter convert;
};
constexpr CurveEntity kCurveEntities[] = {{kLine, N_igs110}, {kBSplineCurve, N_igs126}};
constexpr SurfaceEntity kSurfaceEntities[] = {{kBSplineSurface, N_igs128}};

template <class Table, std::size_t N>
const Table *find_entity(const Table (&table)[N], int64_t type) noexcept {
    const Table *at = std::find_if(table, table + N, [type](const Table &t) { return t.type == type; });
    return at == table + N ? nullptr : at;
}

// Everything converted, on the private context.
struct Results {
    Curve **curves = nullptr;
    Surface **surfaces = nullptr;
    RealMatrix matrices{-1, -1, nullptr, KW_FULL, 0};  // matrix k: rows 4k .. 4k+3
    int32_t nc = -1, ns = -1, nm = -1;
    int32_t *index = nullptr;  // entry -> its result's index, or -1

    RealMatrix matrix(int32_t k) const noexcept {
        RealMatrix T;
        M_makrma(&T, 3, 3, matrices.a + 4 * static_cast<int64_t>(k), KW_FULL, 1);
        return T;
    }
};

int16_t allocate(const Model &model, Results *res, StorageStacks *stk) noexcept {
    for (int32_t e = 0; e < model.entries; ++e) {
        Entry en;
        model.entry(e, &en);
        res->nc += find_entity(kCurveEntities, en.type) != nullptr;
        res->ns += find_entity(kSurfaceEntities, en.type) != nullptr;
        res->nm += en.type == kTransformation;
    }
    if (model.entries > 0 && !(res->index = S_geti1d(model.entries - 1, stk))) return 1;
    if (res->nc >= 0 && !(res->curves = S_getcu1(res->nc, 1, stk))) return 1;
    if (res->ns >= 0 && !(res->surfaces = S_getsu1(res->ns, stk))) return 1;
    if (res->nm >= 0 &&
        M_rmachk(&res->matrices, 4 * res->nm + 3, 3, KW_FULL, 1, name, stk))
        return 1;
    return 0;
}

int16_t convert(const Model &model, Results *res, StorageStacks *stk) noexcept {
    if (allocate(model, res, stk)) return 1;
    int32_t ic = 0, is = 0, im = 0;
    for (int32_t e = 0; e < model.entries; ++e) {
        Entry en;
        model.entry(e, &en);
        res->index[e] = -1;
        const CurveEntity *curve = find_entity(kCurveEntities, en.type);
        const SurfaceEntity *surface = find_entity(kSurfaceEntities, en.type);
        if (!curve && !surface && en.type != kTransformation) continue;
        double *par;
        int32_t np;
        if (read_parameters(model, e, en, &par, &np, stk)) return 1;
        int16_t status;
        if (curve) {
            status = curve->convert(par, np, res->curves[ic], stk);
            res->index[e] = ic++;
        } else if (surface) {
            status = surface->convert(par, np, res->surfaces[is], stk);
            res->index[e] = is++;
        } else {
            RealMatrix T = res->matrix(im);
            status = N_igs124(par, np, &T, stk);
            res->index[e] = im++;
        }
        if (status) return 1;
    }
    return 0;
}

// ---- Transformations --------------------------------------------------------------------

void transform_object(Curve *c, const RealMatrix &T) noexcept {
    if (!U_iscur3(c)) U_cur2t3(c);
    each_point(c, [&T](ControlPoint &P) { A_tracpt(P, &T, &P); });
}

void transform_object(Surface *s, const RealMatrix &T) noexcept {
    each_point(s, [&T](ControlPoint &P) { A_tracpt(P, &T, &P); });
}

// Applies the chain of matrices that starts at Directory pointer `pointer`:
// the first one named, then the one that it names, and so on.
template <class Obj>
int16_t apply_chain(const Model &model, const Results &res, int64_t pointer, Obj *obj) noexcept {
    for (int32_t steps = 0; pointer != 0; ++steps) {
        if (pointer < 1 || pointer % 2 == 0 || pointer > 2 * static_cast<int64_t>(model.entries) - 1)
            return fail(KW_EARG, name);
        const auto e = static_cast<int32_t>((pointer - 1) / 2);
        Entry en;
        model.entry(e, &en);
        if (en.type != kTransformation || steps > res.nm) return fail(KW_EARG, name);
        transform_object(obj, res.matrix(res.index[e]));
        pointer = en.matrix;
    }
    return 0;
}

int16_t transform_all(const Model &model, const Results &res) noexcept {
    for (int32_t e = 0; e < model.entries; ++e) {
        Entry en;
        model.entry(e, &en);
        if (en.matrix == 0 || en.type == kTransformation) continue;
        if (find_entity(kCurveEntities, en.type) &&
            apply_chain(model, res, en.matrix, res.curves[res.index[e]]))
            return 1;
        if (find_entity(kSurfaceEntities, en.type) &&
            apply_chain(model, res, en.matrix, res.surfaces[res.index[e]]))
            return 1;
    }
    return 0;
}

// ---- Handing the results over ---------------------------------------------------------------

// Copies the results to stk. A failure part-way kills what was copied (the
// curve and surface records stay on stk until N_enurbs, as killed ones do).
int16_t commit(const Results &res, Curve ***cur, int32_t *nc, Surface ***sur, int32_t *ns,
               RealMatrix *mat, int32_t *nm, StorageStacks *stk) noexcept {
    Curve **curves = nullptr;
    Surface **surfaces = nullptr;
    int32_t copied_curves = 0, copied_surfaces = 0;
    auto undo = [&]() noexcept {
        for (int32_t i = copied_surfaces - 1; i >= 0; --i) U_kilsur(surfaces[i], stk);
        kill_block(surfaces, KW_LIST_SU2, stk);
        for (int32_t i = copied_curves - 1; i >= 0; --i) U_kilcur(curves[i], stk);
        kill_block(curves, KW_LIST_CU2, stk);
        return int16_t{1};
    };
    if (res.nc >= 0) {
        if (!(curves = S_getcu1(res.nc, 1, stk))) return undo();
        for (; copied_curves <= res.nc; ++copied_curves)
            if (U_curcop(res.curves[copied_curves], curves[copied_curves], stk)) return undo();
    }
    if (res.ns >= 0) {
        if (!(surfaces = S_getsu1(res.ns, stk))) return undo();
        for (; copied_surfaces <= res.ns; ++copied_surfaces)
            if (U_surcop(res.surfaces[copied_surfaces], surfaces[copied_surfaces], stk))
                return undo();
    }
    if (mat && res.nm >= 0) {
        if (M_rmachk(mat, res.matrices.n, 3, KW_FULL, 1, name, stk)) return undo();
        for (int32_t i = 0; i <= res.matrices.n; ++i) std::copy_n(res.matrices.a[i], 4, mat->a[i]);
    }
    *cur = curves;
    *nc = res.nc;
    *sur = surfaces;
    *ns = res.ns;
    *nm = res.nm;
    return 0;
}

}  // namespace

int16_t U_inpigs(Curve ***cur, int32_t *nc, Surface ***sur, int32_t *ns, RealMatrix *mat,
                 int32_t *nm, const char *file, StorageStacks *stk) {
    if (!cur || !nc || !sur || !ns || !nm) return fail(KW_EARG, name);
    FILE *f = file ? std::fopen(file, "rb") : nullptr;
    if (!f) return fail(KW_EFILE, name);
    LocalStacks scratch;
    std::string_view text;
    const int16_t loaded = load(f, &text, scratch.get());
    std::fclose(f);
    if (loaded) return 1;
    Model model;
    Results res;
    if (parse(text, &model, scratch.get()) || convert(model, &res, scratch.get()) ||
        transform_all(model, res))
        return 1;
    return commit(res, cur, nc, sur, ns, mat, nm, stk);
}
