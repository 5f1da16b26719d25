#include "server/user_command.h"

#include "server/state_folder.h"
#include "server/users_file.h"

#include <istream>
#include <ostream>
#include <string>
#include <termios.h>
#include <unistd.h>

namespace agentd {
namespace {

// While it lives, a terminal on standard input doesn't show what is typed.
class QuietTerminal {
public:
    QuietTerminal()
        : isTerminal_(::tcgetattr(STDIN_FILENO, &before_) == 0)
    {
        termios quiet = before_;
        quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        if (isTerminal_)
            ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet);
    }
    ~QuietTerminal()
    {
        if (isTerminal_)
            ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_);
    }
    QuietTerminal(const QuietTerminal &) = delete;
    QuietTerminal &operator=(const QuietTerminal &) = delete;
    bool isTerminal() const { return isTerminal_; }

private:
    termios before_{};
    bool isTerminal_;
};

std::string readPassword(std::istream &input, std::ostream &prompt)
{
    const QuietTerminal quiet;
    if (quiet.isTerminal())
        prompt << "Password: " << std::flush;
    std::string line;
    std::getline(input, line);
    if (quiet.isTerminal())
        prompt << "\n";
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    return line;
}

void carryOut(const UserOptions &options, std::istream &input, std::ostream &prompt)
{
    makeStateFolder(options.stateDir);
    switch (options.action) {
    case UserOptions::Action::add:
        return addUser(options.stateDir, options.name, readPassword(input, prompt));
    case UserOptions::Action::passwd:
        return changePassword(options.stateDir, options.name, readPassword(input, prompt));
    case UserOptions::Action::del:
        return deleteUser(options.stateDir, options.name);
    }
}

} // namespace

int runUserCommand(const UserOptions &options, std::istream &input, std::ostream &errors)
try {
    carryOut(options, input, errors);
    return 0;
} catch (const std::exception &failure) {
    errors << "agentd: " << failure.what() << "\n";
    return 1;
}

} // namespace agentd
