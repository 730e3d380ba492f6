#pragma once

#include <string>
#include <vector>

// What a program learns from the system it was started by, in UTF-8 on every platform. On
// Windows argv and the environment of the C runtime are in the ANSI code page, which cannot
// hold every name; they are taken in UTF-16 from the system instead.
namespace vkl::process {

// The whole command line as the system keeps it, program name included. Only Windows keeps
// one (GetCommandLineW); elsewhere it is empty and the arguments are all there is.
std::string rawCommandLine();

// The arguments after the program name: on Windows split from the UTF-16 command line by the
// system's rules, elsewhere argv as given.
std::vector<std::string> arguments(int argc, char** argv);

// The environment as "NAME=value" entries, in the system's order.
std::vector<std::string> environment();

// Makes standard output and standard error pass bytes as given (on Windows the C runtime
// would turn LF into CR LF), so both platforms print the same bytes.
void binaryStdio();

}  // namespace vkl::process
