#include "host/cli/AnswerPrinter.h"
#include "host/cli/CommandLine.h"
#include "host/cli/Console.h"
#include "host/cli/Interrupt.h"
#include "host/cli/help/helpPages.h"

#include <unistd.h>

using namespace Zamt;
using namespace Zamt::Host;

namespace {

Status runVerb(const CommandLine& line, const Stop& stop, Console& console) {
  AnswerPrinter printer(*line.verb, line.request.flag("json"), console);
  const auto readInput = [&stop](std::string& text) { return readToEnd(STDIN_FILENO, stop, text); };
  const Context context{.stop = stop,
                        .quindles = QuindleReader(stop, readInput),
                        .progress = [&console](const ProgressNow& now) { console.progress(now); },
                        .part = [&printer](const Part& part) { printer.take(part); }};
  return printer.finish(line.verb->run(line.request, context));
}

Status answer(const CommandLine& line, const Program& program, const Stop& stop, Console& console) {
  switch (line.kind) {
  case CommandLine::Kind::Run: return runVerb(line, stop, console);
  case CommandLine::Kind::Help:
    console.print(line.verb == nullptr ? overviewPage(program) : verbPage(program, *line.verb));
    return Status::Done;
  case CommandLine::Kind::Version: console.print(program.version + '\n'); return Status::Done;
  case CommandLine::Kind::Misuse: break;
  }
  console.error(line.complaint);
  console.note(line.advice);
  return Status::Usage;
}

} // namespace

int main(int argc, char** argv) {
  Stop stop;
  handleSignals(stop);
  Console console;
  const Program& program = quindleProgram();
  const int status = console.finish(answer(readCommandLine(argc, argv, program), program, stop, console));
  endIfInterrupted();
  return status;
}
