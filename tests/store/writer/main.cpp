// Takes one step after the other on a study file and reports each on standard output when the store has
// returned from it, until it is killed.
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <unistd.h>

#include "host/store/sqlite_store.h"
#include "tests/store/store_folder.h"

int main(int, char** argv) {
  using namespace banddesk::host;
  try {
    SqliteStore store(argv[1]);
    for (int step = stepsTaken(store);; ++step) {
      takeStep(store, step);
      const int taken = step + 1;
      if (::write(STDOUT_FILENO, &taken, sizeof taken) != sizeof taken) return EXIT_FAILURE;
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return EXIT_FAILURE;
  }
}
