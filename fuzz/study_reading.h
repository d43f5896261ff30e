// A small study file, and a program's whole way through a file that somebody else has changed: everything in
// it is read, it is opened as a study, and the pages of its analyses are opened. What is wrong with it may
// only show as an Error.
#pragma once

#include <string>

namespace banddesk::fuzz {

// The bytes of a sound study file with an import, two analyses and stored decisions.
std::string studyFile();

// A file of this process, in memory where the system has such a place.
const std::string& studyPath();
void writeStudy(const std::string& bytes);

// Reads all of the file, through its store alone and, `withPages`, through a host too.
void readStudy(bool withPages);

}  // namespace banddesk::fuzz
