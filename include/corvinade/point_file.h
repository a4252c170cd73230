// Files of points, read by the readers of the program. Lengths in mm; texts and paths in UTF-8. Any number of
// threads may read at once.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "corvinade/error.h"
#include "corvinade/points.h"

namespace corvinade {

// What the reading of a file has decided on its own, or leaves to be said.
struct FileNote {
    std::string Code, Text;  // the codes are those of docs/manual/20-notes.md
    int Line = 0;            // in the file, from 1; 0 where it is of none
};

// Points with their names.
struct NamedPoints {
    std::vector<std::string> Names;
    std::vector<double> Coordinates;  // three a point, x y z, mm
    std::vector<double> Sigmas;  // a-priori standard deviations, three a point, mm; empty: none are known

    // For a fit; good as long as these coordinates stay where they are.
    Points View() const { return Points(Coordinates); }
};

// What is said of a file; what is left as it is here the reader finds by itself.
struct PointFileOptions {
    std::string Columns;   // "name,x,y,z", with sx, sy, sz or s for standard deviations, "-" for others
    std::string Unit;      // "mm", "cm", "m", "km", "in", "ft"; found: the one that the file names, else mm
    std::string Encoding;  // "utf-8", "utf-16le", "utf-16be", "windows-1252"
    char Delimiter = 0;    // between cells; ' ' for blanks
    char Decimal = 0;      // '.' or ','
    std::optional<std::string>
        Comment;           // a line that begins with one of these characters is none of the table
    std::size_t Skip = 0;  // so many lines at the beginning are none of it
    bool SkipBad =
        false;  // rows that are no points are passed over, which a note tells; else they are refused
    // Asked now and then: true ends the reading, which then throws Stopped.
    std::function<bool()> StopIsWanted;
};

struct PointFile {
    NamedPoints Points;
    std::vector<FileNote> Notes;
    std::string Format;  // "table", "ply", "pcd", "landxml", ...
    std::string Unit;    // the one that the file has; the points are in mm
};

// The points of a table of text, or of a cloud or another carrier (PLY, PCD, .xyz, .pts, .asc, trajectories,
// LandXML, control points of a map), as `corvinade-cli fit` reads them. Throws InvalidInput, with file, line
// and column, where it cannot be read for certain, or not at all; Stopped; std::bad_alloc.
CORVINADE_API PointFile ReadPoints(const std::string& path, const PointFileOptions& options = {});

// Writes a table with the columns name, x, y, z, and sx, sy, sz where there are standard deviations, in mm,
// with so many digits that reading gives the same numbers. The file is replaced in one step or stays as it
// is; gives what is to be said of that. Throws InvalidInput where names, coordinates and standard deviations
// are not as many, a name is empty, stands twice or has a line end, a semicolon or a quote in it, a number is
// infinite or none, and where the file cannot be written.
CORVINADE_API std::vector<FileNote> WritePoints(const std::string& path, const NamedPoints& points);

}  // namespace corvinade
