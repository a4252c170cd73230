// The library for languages that call C.
#include <algorithm>
#include <cstring>
#include <new>

#include "corvinade/corvinade.h"
#include "corvinade/fit.h"

struct corvinade_options {
    corvinade::FitOptions Options;
    std::vector<unsigned char> Use;
};
struct corvinade_result {
    corvinade::FitResult Result;
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
