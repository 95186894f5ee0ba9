#ifndef TOOLS_SITELIST_AGENT_NO_ECHO_H
#define TOOLS_SITELIST_AGENT_NO_ECHO_H

namespace tool {

// If standard input is a terminal, asks for a password there and hides what is typed, for the life
// of the object. A signal that ends or stops the program restores the terminal first. When a
// stopped program continues, it asks again. Only one object may exist at a time.
class NoEcho {
 public:
  NoEcho();
  ~NoEcho();
  NoEcho(const NoEcho&) = delete;
  NoEcho& operator=(const NoEcho&) = delete;

 private:
  bool m_isTerminal = false;
};

}  // namespace tool

#endif
