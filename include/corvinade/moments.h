// Fits of more pairs than memory holds, or that lie on many machines: the sums that a fit needs, taken piece
// by piece. Lengths in mm, angles in rad.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "corvinade/fit.h"

namespace corvinade {

// The sums of the coordinates of pairs and of their products, without any rounding: however the pairs are
// cut into pieces, and in whatever order these are added and merged, the sums are the same bit by bit, and so
// is the fit. About 30 kB, whatever the number of pairs. One object may be read from many threads, and
// changed from one at a time.
class CORVINADE_API Moments {
public:
    Moments();
    Moments(const Moments& other);
    Moments& operator=(const Moments& other);
    Moments(Moments&&) noexcept;
    Moments& operator=(Moments&&) noexcept;
    ~Moments();

    // Takes pairs in. Throws InvalidInput, having taken none: sets of different lengths, coordinates that are
    // infinite, no number or beyond 1e100 mm. No points are no error.
    void Add(const Points& start, const Points& target);
    // Takes in all that another one has.
    void Merge(const Moments& other);

    std::uint64_t Count() const;  // pairs

    // All of it as some 1 or 2 kB that any machine reads; equal sums have equal bytes.
    std::vector<unsigned char> Bytes() const;
    // Throws InvalidInput where the bytes are not whole, or none of these.
    static Moments FromBytes(std::span<const unsigned char> bytes);

private:
    struct Record;
    friend CORVINADE_API FitResult Fit(const Moments& moments, const FitOptions& options);
    std::unique_ptr<Record> record_;
};

// What Fit of the same pairs finds, to the rounding of their coordinates: the transformation, s0 and sigmas.
// Residuals of single pairs are not there: FitResult::Residuals is empty. Pairs that have the same sums are
// fitted in their place, as many or at most 1000: iterations are theirs, and whether a mirrored result of
// nearly flat points is more than noise is judged by so many.
// Throws InvalidInput as Fit does, and for what sums do not tell: another norm than L2, InUse,
// standard deviations, seed pairs other than the first three.
CORVINADE_API FitResult Fit(const Moments& moments, const FitOptions& options = {});

}  // namespace corvinade
