// Vorlaxenbases, the engine's own endgame databases (made by tools/tbgen): this
// folder loads the ".tbe" files into decision diagrams and probes them with its
// own small position library; nothing here is shared with the Syzygy prober.
#pragma once

#include <string>

namespace vx {

struct Position;
struct BaseTable;
class CChessPosition;

// Loads the databases named by a ".tbe" file, an ".ini" list file or a
// directory, after freeing every table loaded before.
void LoadVorlaxenbases(const std::string& path);

// The greatest number of men over the loaded tables (0 when none).
int VorlaxenbasesLargestMen();

// 1 win, 0 draw, -1 loss for the side to move; success is set to 1 only
// when a table answered.
int ProbeVorlaxenbases(Position& pos, int& success);

// ---- pieces of the above, for the generator, the tests and the fuzzer ----

enum class BaseFileStatus { LOADED, NOT_FOUND, INVALID, MEN_OUT_OF_RANGE };

// Frees every loaded table.
void FreeVorlaxenbases();
// Validates one ".tbe" file and adds its tables to the loaded ones; writes
// nothing. A file that is not LOADED adds nothing.
BaseFileStatus LoadBaseFile(const std::string& path);
// The probe from a library position on (colours not yet normalised): true
// with result 1, 0 or -1 when a table answered.
bool ProbeLibraryPosition(const CChessPosition& pos, int& result);
// The walk through the side-to-move part of a given table for a position of
// its material in its colours; false when that part or sub-table is missing.
bool ProbeStoredPart(const BaseTable& table, const CChessPosition& pos, int& result);

}  // namespace vx
