// What a field of a result says, in a sentence.
#include "engine/field_words.h"

#include "core/parameter_names.h"
#include "core/window.h"
#include "engine/calculation_window.h"
#include "fit/parameters.h"

namespace corvinade::engine {

namespace {

struct FieldWords {
    const char *Control, *Words;
};

constexpr FieldWords kWords[] = {
    {"TextS0",
     "s0, the mean error of a coordinate: the root of the sum of the squared deviations in use, divided by the "
     "number of coordinates in use less one."},
    {"TextSx",
     "sigma x, the mean error along x of the target system: as s0, of the x coordinates in use alone."},
    {"TextSy",
     "sigma y, the mean error along y of the target system: as s0, of the y coordinates in use alone."},
    {"TextSz",
     "sigma z, the mean error along z of the target system: as s0, of the z coordinates in use alone."},
    {"TextSxyz",
     "sigma xyz, the mean error of a point in space: the root of the squares of sigma x, y and z."},
    {"TextMaxDevxyz",
     "The largest deviation in space of a point with all three coordinates in use: its transformed start point "
     "is so far from its target."},
    {"TextMaxDevXYZPkt",
     "The point with the largest deviation in space. A double click takes it out of use, or in again."},
    {"TextMaxDevX", "The largest deviation along x: transformed start minus target, with its sign."},
    {"TextMaxDevY", "The largest deviation along y: transformed start minus target, with its sign."},
    {"TextMaxDevZ", "The largest deviation along z: transformed start minus target, with its sign."},
    {"TextMinDevX",
     "The smallest deviation along x, which is the most negative one where there are any below 0."},
    {"TextMinDevY",
     "The smallest deviation along y, which is the most negative one where there are any below 0."},
    {"TextMinDevZ",
     "The smallest deviation along z, which is the most negative one where there are any below 0."},
    {"TextMaxMinX", "The span of the deviations along x, from the smallest to the largest."},
    {"TextMaxMinY", "The span of the deviations along y, from the smallest to the largest."},
    {"TextMaxMinZ", "The span of the deviations along z, from the smallest to the largest."},
    {"TextMaxDevXPkt",
     "The point with the largest deviation along x. A double click takes this coordinate out of use, or in again."},
    {"TextMaxDevYPkt",
     "The point with the largest deviation along y. A double click takes this coordinate out of use, or in again."},
    {"TextMaxDevZPkt",
     "The point with the largest deviation along z. A double click takes this coordinate out of use, or in again."},
    {"TextMinDevXPkt",
     "The point with the smallest deviation along x. A double click takes this coordinate out of use, or in again."},
    {"TextMinDevYPkt",
     "The point with the smallest deviation along y. A double click takes this coordinate out of use, or in again."},
    {"TextMinDevZPkt",
     "The point with the smallest deviation along z. A double click takes this coordinate out of use, or in again."},
    {"LabelVerdict",
     "pass where no coordinate in use deviates by more than the tolerance, else fail. Without a tolerance nothing "
     "is said."},
    {"LabelResultState",
     "Whether the fields show the result of what the job holds now: not calculated yet, stored with the job, or out "
     "of date because points, parameters, norm or use have changed since."},
    {"LabelDirection", "Which of the two systems the points are carried from, and which to."},
};

constexpr const char* kSigma =
    ": its standard deviation, as it follows from the deviations and from how the points lie. Measured again with the "
    "same quality, the parameter would scatter by so much. A dash where the points do not tell it.";
constexpr const char* kSignificance =
    ": how many sigmas the parameter lies from the value that does nothing, which is 0, and 1 of a scale. Below "
    "about 3 it may as well be noise.";

// What a parameter does, and in which turn.
const char* WordsOf(int parameter) {
    switch (parameter) {
        case kTraX:
        case kTraY:
        case kTraZ:
            return ": the shift along this axis of the target system, in the length unit; it comes behind rotation and "
                   "scales.";
        case kRotX:
        case kRotY:
        case kRotZ:
            return ": the rotation about this axis, in the angle unit.";
        case kScaleX:
        case kScaleY:
        case kScaleZ:
            return ": the scale along this axis alone; 1 leaves lengths as they are.";
        case kScaleXYZ:
            return ": the scale of all three axes together; 1 leaves lengths as they are.";
        case kAngleXY:
            return ": how far the y axis leans from its right angle to x, in the angle unit.";
        case kAzimuth:
            return ": the direction in which the z axis leans, in the angle unit; it says nothing where the axis does "
                   "not lean.";
        case kAngleZtoXY:
            return ": how far the z axis leans from the normal of the plane of x and y, in the angle unit.";
        case kRDist:
            return ": the distance that each transformed point is to have from its target, in the length unit.";
        default:
            return ": a part of the tool vector, which points from the robot's flange to the tip, in the length unit.";
    }
}

}  // namespace

std::string WhatIs(const Control& control) {
    for (const ParameterControls& row : ParameterRows()) {
        const std::string name = ParameterName(row.Parameter);
        if (&control == row.Text) return name + WordsOf(row.Parameter);
        if (&control == row.Sigma) return "Sigma of " + name + kSigma;
        if (&control == row.Signifikanz) return "Significance of " + name + kSignificance;
    }
    for (const FieldWords& row : kWords)
        if (&control == FindControl(FormTrafoBerechnung_Entry, row.Control)) return row.Words;
    return "";
}

}  // namespace corvinade::engine
