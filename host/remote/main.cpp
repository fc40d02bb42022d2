// quillmarch-host: the headless host as a program of its own, for programs elsewhere on this
// machine that call its objects. Says on which port it listens, serves one program after the other,
// and ends when its standard input does.
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <iostream>
#include <string>

#include "host/remote/Loopback.h"
#include "host/remote/RemoteControl.h"

namespace quillmarch::host {

namespace {

// Whether a program has connected; false when this one is no longer needed.
bool WaitForProgram(int listener) {
  for (;;) {
    pollfd watched[] = {{listener, POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
    if (poll(watched, 2, -1) < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    if (watched[0].revents != 0) return true;
    char byte = 0;
    if (watched[1].revents != 0 && read(STDIN_FILENO, &byte, 1) <= 0) return false;
  }
}

}  // namespace

}  // namespace quillmarch::host

int main(int argc, char** argv) {
  using namespace quillmarch::host;
  if (argc > 2) {
    std::cerr << "usage: quillmarch-host [PORT]\n";
    return 2;
  }
  auto port = static_cast<std::uint16_t>(argc == 2 ? std::atoi(argv[1]) : 0);
  const int listener = ListenOnLoopback(port);
  if (listener < 0) {
    std::cerr << "quillmarch-host: Can't listen on 127.0.0.1:" << port << ".\n";
    return 1;
  }
  std::cout << "listening on 127.0.0.1:" << port << std::endl;
  while (WaitForProgram(listener)) {
    const int connection = accept(listener, nullptr, nullptr);
    if (connection < 0) continue;
    ObjectServer server;
    server.SetRoot(MakeRemoteControl(server));
    ServeConnection(connection, server);
    close(connection);
  }
  return 0;
}
