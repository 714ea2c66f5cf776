#include "chain/LastingProcess.h"

#include <QDeadlineTimer>
#include <QFile>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr unsigned busStartLimit = 10; // seconds
constexpr int addressDescriptor = 3;
constexpr int longestSaid = 4000;
constexpr int graceMilliseconds = 500;

/// Whether the writers of a pipe end in that time.
bool endsWithin(int milliseconds, int reader)
{
    const QDeadlineTimer deadline(milliseconds);
    for (;;) {
        pollfd ready{reader, POLLIN, 0};
        char bytes[1024];
        if (poll(&ready, 1, int(deadline.remainingTime())) <= 0)
            return false;
        if (read(reader, bytes, sizeof bytes) <= 0)
            return true;
    }
}

/// A vector of C strings, made before the fork: nothing may be allocated after it.
class Words
{
public:
    explicit Words(std::vector<QByteArray> words)
        : m_words(std::move(words))
    {
        for (QByteArray &word : m_words)
            m_pointers.push_back(word.data());
        m_pointers.push_back(nullptr);
    }
    char *const *get() const { return m_pointers.data(); }
    const char *first() const { return m_pointers.front(); }
    bool isEmpty() const { return m_words.empty(); }

private:
    std::vector<QByteArray> m_words;
    std::vector<char *> m_pointers;
};

Words commandLine(const QStringList &arguments)
{
    std::vector<QByteArray> words;
    for (const QString &argument : arguments)
        words.push_back(QFile::encodeName(argument));
    return Words(words);
}

Words environmentWith(const QByteArray &variable)
{
    const QByteArray name = variable.left(variable.indexOf('=') + 1);
    std::vector<QByteArray> words;
    for (char **entry = environ; *entry != nullptr; ++entry) {
        if (!QByteArray(*entry).startsWith(name))
            words.emplace_back(*entry);
    }
    words.push_back(variable);
    return Words(words);
}

/// All that the new processes need.
struct Start
{
    Words program;
    Words bus;
    Words environment;
    int inherited;
    int nothing;
    int said;
};

// What follows runs in a new process, before its program: only system calls.

[[noreturn]] void fail(const char *what)
{
    const char *const texts[] = {what, ": ", std::strerror(errno), "\n"};
    iovec parts[std::size(texts)];
    for (size_t i = 0; i < std::size(texts); ++i)
        parts[i] = {const_cast<char *>(texts[i]), std::strlen(texts[i])};
    // At once, so that the bus's words don't come between.
    static_cast<void>(!writev(STDERR_FILENO, parts, std::size(texts)));
    _exit(127);
}

[[noreturn]] void becomeBus(const Start &start, pid_t program, int address)
{
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != program)
        _exit(1); // it was gone before the line above
    if (dup2(address, addressDescriptor) == address)
        fcntl(address, F_SETFD, 0);
    execv(start.bus.first(), start.bus.get());
    fail(start.bus.first());
}

/// Returns when the bus can be used.
void startBus(const Start &start)
{
    int address[2] = {-1, -1};
    const pid_t self = getpid();
    if (pipe2(address, O_CLOEXEC) != 0)
        fail("pipe");
    const pid_t bus = fork();
    if (bus == 0)
        becomeBus(start, self, address[1]);
    close(address[1]);
    alarm(busStartLimit); // with us the bus ends, too
    char byte = 0;
    if (bus < 0 || read(address[0], &byte, 1) != 1)
        _exit(127); // the bus has said why
    alarm(0);
    close(address[0]);
}

[[noreturn]] void becomeProgram(const Start &start)
{
    std::signal(SIGALRM, SIG_DFL);
    setsid();
    if (fork() != 0)
        _exit(0); // so that nobody has to wait for its end
    dup2(start.nothing, STDIN_FILENO);
    dup2(start.nothing, STDOUT_FILENO);
    dup2(start.said, STDERR_FILENO);
    static_cast<void>(!chdir("/"));
    close_range(addressDescriptor, ~0U, CLOSE_RANGE_CLOEXEC);
    if (start.inherited >= 0)
        fcntl(start.inherited, F_SETFD, 0);
    if (!start.bus.isEmpty())
        startBus(start);
    execve(start.program.first(), start.program.get(), start.environment.get());
    fail(start.program.first());
}

} // namespace

LastingProcess::LastingProcess(const Plan &plan)
{
    QStringList bus = plan.bus;
    if (!bus.isEmpty())
        bus.append(QStringLiteral("--print-address=%1").arg(addressDescriptor));
    int said[2] = {-1, -1};
    if (pipe2(said, O_CLOEXEC | O_NONBLOCK) != 0) {
        m_said = std::strerror(errno);
        m_hasEnded = true;
        return;
    }
    const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
    const Start start{commandLine(QStringList(plan.program) + plan.arguments), commandLine(bus),
        environmentWith(plan.variable), plan.inherited, nothing, said[1]};
    const pid_t child = fork();
    if (child == 0)
        becomeProgram(start);
    if (child < 0)
        m_said = std::strerror(errno);
    else
        waitpid(child, nullptr, 0);
    m_group = child; // it has made itself its leader
    close(nothing);
    close(said[1]);
    m_reader = said[0];
    m_notifier = std::make_unique<QSocketNotifier>(m_reader, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &LastingProcess::listen);
}

LastingProcess::~LastingProcess()
{
    if (m_reader >= 0 && m_group > 0)
        end();
    letGo();
}

void LastingProcess::end() const
{
    for (const int signal : {SIGTERM, SIGKILL}) {
        kill(-m_group, signal);
        if (endsWithin(graceMilliseconds, m_reader))
            return;
    }
}

/// Its standard error has no end before it has ended itself.
void LastingProcess::listen()
{
    char bytes[1024];
    const ssize_t count = read(m_reader, bytes, sizeof bytes);
    if (count > 0) {
        m_said = (m_said + QByteArray(bytes, int(count))).right(longestSaid);
    } else if (count == 0) {
        letGo();
        m_hasEnded = true;
        emit ended();
    }
}

void LastingProcess::letGo()
{
    if (m_notifier) {
        m_notifier->setEnabled(false);
        m_notifier.release()->deleteLater(); // this may be its own signal
    }
    if (m_reader >= 0)
        close(m_reader);
    m_reader = -1;
}
