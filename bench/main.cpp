#include "bench/Benches.h"
#include "bench/Rounds.h"

int main(int argc, char** argv) {
  loambench::addRows();
  loambench::addCommands();
  loambench::addLoading();
  loambench::addRegions();
  return loambench::runAll(argc, argv);
}
