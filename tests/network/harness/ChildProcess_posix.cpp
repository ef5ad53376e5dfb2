#include "tests/network/harness/ChildProcess.h"

#include "tests/network/harness/Rights.h"
#include "tests/network/harness/TestNetwork.h"
#include "tests/network/harness/WaitFor.h"

#include <cerrno>
#include <csignal>
#include <iostream>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>

namespace NetworkTests {
namespace {

constexpr std::size_t shownBytes = 8192;

class FileActions {
public:
    FileActions() { posix_spawn_file_actions_init(&actions_); }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    void use(int descriptor, int as) { posix_spawn_file_actions_adddup2(&actions_, descriptor, as); }
    void create(const std::string& path, int as)
    {
        posix_spawn_file_actions_addopen(&actions_, as, path.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
    }
    const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_;
};

/// A new process group, and the signals as a shell would leave them.
class SpawnAttributes {
public:
    SpawnAttributes()
    {
        posix_spawnattr_init(&attributes_);
        sigset_t all;
        sigfillset(&all);
        sigset_t none;
        sigemptyset(&none);
        posix_spawnattr_setsigdefault(&attributes_, &all);
        posix_spawnattr_setsigmask(&attributes_, &none);
        posix_spawnattr_setpgroup(&attributes_, 0);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    }
    ~SpawnAttributes() { posix_spawnattr_destroy(&attributes_); }
    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;

    const posix_spawnattr_t* get() const { return &attributes_; }

private:
    posix_spawnattr_t attributes_;
};

/// The command behind the programs that give it its network and user and end it when the test dies.
std::vector<std::string> fullCommand(const Command& command)
{
    std::vector<std::string> words;
    if (command.network) {
        words = command.network->enter();
    }
    words.insert(words.end(), {"setpriv", "--pdeathsig", "KILL"});
    if (command.asNobody && isRoot()) {
        words.insert(words.end(), {"--reuid", "nobody", "--regid", "nogroup", "--clear-groups"});
    }
    words.emplace_back("--");
    words.insert(words.end(), command.words.begin(), command.words.end());
    return words;
}

std::vector<std::string> fullEnvironment(const Command& command, const TemporaryFolder& home)
{
    std::map<std::string, std::string> all = {{"HOME", home.path()}, {"LANG", "C.UTF-8"}};
    for (const char* name : {"PATH", "ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS"}) {
        if (const std::string value = environment(name); !value.empty()) {
            all[name] = value;
        }
    }
    all["PATH"] += ":/usr/sbin:/sbin";
    for (const auto& [name, value] : command.environment) {
        all[name] = value;
    }
    std::vector<std::string> texts;
    for (const auto& [name, value] : all) {
        texts.push_back(name);
        texts.back() += '=';
        texts.back() += value;
    }
    return texts;
}

std::vector<char*> pointers(std::vector<std::string>& texts)
{
    std::vector<char*> result;
    for (std::string& text : texts) {
        result.push_back(text.data());
    }
    result.push_back(nullptr);
    return result;
}

int exitStatus(int waitStatus)
{
    return WIFEXITED(waitStatus) ? WEXITSTATUS(waitStatus) : 128 + WTERMSIG(waitStatus);
}

std::string tail(const std::string& text)
{
    return text.size() <= shownBytes ? text : "[...]" + text.substr(text.size() - shownBytes);
}

} // namespace

ChildProcess::ChildProcess(const Command& command)
{
    for (const std::string& word : command.words) {
        title_ += (title_.empty() ? "" : " ") + word;
    }
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        throw std::system_error(errno, std::generic_category(), "socketpair");
    }
    input_ = Descriptor(ends[0]);
    const Descriptor childInput(ends[1]);
    start(command, childInput.get());
}

ChildProcess::~ChildProcess()
{
    end();
    showIfTestFailed();
}

void ChildProcess::start(const Command& command, int input)
{
    FileActions files;
    files.use(input, STDIN_FILENO);
    files.create(folder_ / "output", STDOUT_FILENO);
    files.create(folder_ / "errors", STDERR_FILENO);
    const SpawnAttributes attributes;
    std::vector<std::string> words = fullCommand(command);
    std::vector<std::string> variables = fullEnvironment(command, folder_);
    const int error = posix_spawnp(&pid_, words[0].c_str(), files.get(), attributes.get(), pointers(words).data(),
                                   pointers(variables).data());
    if (error != 0) {
        throw std::system_error(error, std::generic_category(), words[0]);
    }
}

void ChildProcess::signal(int number) const
{
    if (!status_) {
        kill(-pid_, number);
    }
}

void ChildProcess::writeLine(std::string_view line) const
{
    const std::string text = std::string(line) + "\n";
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t count = send(input_.get(), text.data() + written, text.size() - written, MSG_NOSIGNAL);
        if (count < 0 && errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), "standard input of " + title_);
        }
        written += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
}

std::optional<std::string> ChildProcess::readLine(std::chrono::milliseconds bound)
{
    std::string text;
    std::size_t lineEnd = std::string::npos;
    const auto complete = [&] {
        text = output();
        lineEnd = text.find('\n', lineStart_);
        return lineEnd != std::string::npos;
    };
    bool ended = false;
    waitFor(
        [&] {
            ended = !running();
            return complete() || ended;
        },
        bound);
    if (lineEnd == std::string::npos) {
        return std::nullopt;
    }
    std::string line = text.substr(lineStart_, lineEnd - lineStart_);
    lineStart_ = lineEnd + 1;
    return line;
}

std::optional<int> ChildProcess::waitForExit(std::chrono::milliseconds bound)
{
    waitFor([this] { return !running(); }, bound);
    return status_;
}

bool ChildProcess::running()
{
    reap(false);
    return !status_;
}

std::string ChildProcess::output() const
{
    return readFile(folder_ / "output");
}

std::string ChildProcess::errors() const
{
    return readFile(folder_ / "errors");
}

void ChildProcess::reap(bool wait)
{
    int status = 0;
    if (!status_ && waitpid(pid_, &status, wait ? 0 : WNOHANG) == pid_) {
        status_ = exitStatus(status);
    }
}

void ChildProcess::end()
{
    closeInput();
    signal(SIGTERM);
    if (!waitForExit(std::chrono::seconds(3))) {
        signal(SIGKILL);
        reap(true);
    }
}

void ChildProcess::showIfTestFailed() const
{
    if (testing::Test::HasFailure()) {
        std::cerr << "---- " << title_ << ": status " << status_.value_or(-1) << "\n"
                  << tail(output()) << tail(errors()) << "----\n";
    }
}

Finished run(const Command& command, std::chrono::milliseconds bound)
{
    ChildProcess process(command);
    process.closeInput();
    const std::optional<int> status = process.waitForExit(bound);
    if (!status) {
        throw std::runtime_error(command.words[0] + " does not end; so far: " + process.output() + process.errors());
    }
    return {*status, process.output(), process.errors()};
}

} // namespace NetworkTests
