// The library for languages that call C.
#include <algorithm>
#include <cstring>
#include <new>

#include "corvinade/corvinade.h"
#include "corvinade/fit.h"
#include "corvinade/moments.h"

struct corvinade_options {
    corvinade::FitOptions Options;
    std::vector<unsigned char> Use;
};
struct corvinade_result {
    corvinade::FitResult Result;
};
struct corvinade_moments {
    corvinade::Moments Of;
};

namespace {

using corvinade::InvalidInput;

void Tell(corvinade_error* error, const char* text) {
    if (error == nullptr) return;
    const std::size_t size = std::min(std::strlen(text), sizeof(error->text) - 1);
    std::memcpy(error->text, text, size);
    error->text[size] = 0;
}

template <class Work>
corvinade_status Guarded(corvinade_error* error, const Work& work) noexcept {
    Tell(error, "");
    try {
        work();
        return CORVINADE_OK;
    } catch (const std::bad_alloc&) {
        Tell(error, "there is not enough memory");
        return CORVINADE_NO_MEMORY;
    } catch (const std::exception& wrong) {
        Tell(error, wrong.what());
        return CORVINADE_INVALID_INPUT;
    }
}

void Expect(const void* pointer, const char* what) {
    if (pointer == nullptr) throw InvalidInput(std::string(what) + " expected, and a null pointer came");
}

}  // namespace

const char* corvinade_version(void) {
    return corvinade::Version();
}

corvinade_options* corvinade_options_new(void) {
    try {
        return new corvinade_options;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void corvinade_options_free(corvinade_options* options) {
    delete options;
}

corvinade_status corvinade_set_parameters(corvinade_options* options, const char* name,
                                          corvinade_error* error) {
    return Guarded(error, [&] {
        Expect(options, "options");
        Expect(name, "a name");
        options->Options.Parameters = corvinade::ChoiceByName(name);
    });
}

corvinade_status corvinade_hold(corvinade_options* options, const char* parameter, double value,
                                corvinade_error* error) {
    return Guarded(error, [&] {
        Expect(options, "options");
        Expect(parameter, "a name");
        options->Options.Parameters.Hold(corvinade::ParameterByName(parameter), value);
    });
}

corvinade_status corvinade_set_norm(corvinade_options* options, const char* name, corvinade_error* error) {
    return Guarded(error, [&] {
        Expect(options, "options");
        Expect(name, "a name");
        options->Options.Which = corvinade::NormByName(name);
    });
}

corvinade_status corvinade_set_use(corvinade_options* options, const unsigned char* flags, size_t count,
                                   corvinade_error* error) {
    return Guarded(error, [&] {
        Expect(options, "options");
        if (count > 0) Expect(flags, "flags");
        std::vector<unsigned char> use(flags, flags + count);
        options->Use.swap(use);
        options->Options.InUse = options->Use;
    });
}

corvinade_status corvinade_fit(const double* start, const double* target, size_t pairs,
                               const corvinade_options* options, corvinade_result** result,
                               corvinade_error* error) {
    return Guarded(error, [&] {
        Expect(result, "a place for the result");
        *result = nullptr;
        *result = new corvinade_result{
            corvinade::Fit({start, pairs}, {target, pairs},
                           options != nullptr ? options->Options : corvinade::FitOptions())};
    });
}

void corvinade_result_free(corvinade_result* result) {
    delete result;
}

const double* corvinade_result_matrix(const corvinade_result* result) {
    return result->Result.Matrix.data();
}
const double* corvinade_result_values(const corvinade_result* result) {
    return result->Result.Values.data();
}
const double* corvinade_result_sigmas(const corvinade_result* result) {
    return result->Result.Sigma.data();
}
const double* corvinade_result_residuals(const corvinade_result* result) {
    return result->Result.Residuals.data();
}
double corvinade_result_s0(const corvinade_result* result) {
    return result->Result.S0;
}
int corvinade_result_converged(const corvinade_result* result) {
    return result->Result.Converged ? 1 : 0;
}
size_t corvinade_result_note_count(const corvinade_result* result) {
    return result->Result.Notes.size();
}
const char* corvinade_result_note_code(const corvinade_result* result, size_t index) {
    const auto& notes = result->Result.Notes;
    return index < notes.size() ? NameOf(notes[index].Code) : nullptr;
}
const char* corvinade_result_note_text(const corvinade_result* result, size_t index) {
    const auto& notes = result->Result.Notes;
    return index < notes.size() ? notes[index].Text.c_str() : nullptr;
}

corvinade_moments* corvinade_moments_new(void) {
    try {
        return new corvinade_moments;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void corvinade_moments_free(corvinade_moments* moments) {
    delete moments;
}

corvinade_status corvinade_moments_add(corvinade_moments* moments, const double* start, const double* target,
                                       size_t pairs, corvinade_error* error) {
    return Guarded(error, [&] {
        Expect(moments, "moments");
        moments->Of.Add({start, pairs}, {target, pairs});
    });
}

corvinade_status corvinade_moments_merge(corvinade_moments* moments, const corvinade_moments* other,
                                         corvinade_error* error) {
    return Guarded(error, [&] {
        Expect(moments, "moments");
        Expect(other, "moments");
        moments->Of.Merge(other->Of);
    });
}

unsigned long long corvinade_moments_count(const corvinade_moments* moments) {
    return moments->Of.Count();
}

corvinade_status corvinade_moments_bytes(const corvinade_moments* moments, unsigned char* bytes, size_t room,
                                         size_t* size, corvinade_error* error) {
    return Guarded(error, [&] {
        Expect(moments, "moments");
        Expect(size, "a place for the number of bytes");
        const std::vector<unsigned char> all = moments->Of.Bytes();
        *size = all.size();
        if (bytes == nullptr && room == 0) return;
        Expect(bytes, "room for the bytes");
        if (room < all.size())
            throw InvalidInput("room for " + std::to_string(all.size()) +
                               " bytes was expected, and room for " + std::to_string(room) + " came");
        std::copy(all.begin(), all.end(), bytes);
    });
}

corvinade_status corvinade_moments_from_bytes(const unsigned char* bytes, size_t size,
                                              corvinade_moments** moments, corvinade_error* error) {
    return Guarded(error, [&] {
        Expect(moments, "a place for the moments");
        *moments = nullptr;
        Expect(bytes, "bytes");
        *moments = new corvinade_moments{corvinade::Moments::FromBytes({bytes, size})};
    });
}

corvinade_status corvinade_fit_moments(const corvinade_moments* moments, const corvinade_options* options,
                                       corvinade_result** result, corvinade_error* error) {
    return Guarded(error, [&] {
        Expect(result, "a place for the result");
        *result = nullptr;
        Expect(moments, "moments");
        *result = new corvinade_result{
            corvinade::Fit(moments->Of, options != nullptr ? options->Options : corvinade::FitOptions())};
    });
}
