// SPDX-License-Identifier: BSD-3-Clause
// lumctl: lumd for people and scripts.
#include "client/shownname.h"
#include "command.h"
#include "session.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTextCodec>
#include <QTranslator>

#include <algorithm>
#include <csignal>
#include <cstdio>

namespace {

constexpr char translations[] = "/usr/share/translations";
const QLatin1String timeoutOption("timeout");
const QLatin1String jsonOption("json");

const Command *const commands[] = {
    &statusCommand,
    &listCommand,
    &infoCommand,
    &installCommand,
    &removeCommand,
    &launchCommand,
    &openCommand,
    &intentCommand,
    &stopCommand,
    &clearCacheCommand,
    &clearDataCommand,
    &autostartCommand,
    &settingsCommand,
    &licencesCommand,
    &runtimeCommand,
    &monitorCommand,
    &completeNamesCommand,
};

/// The place of the first argument that is not an option nor an option's value; -1 for none.
int placeOfCommand(const QStringList &arguments)
{
    for (int i = 1; i < arguments.size(); ++i) {
        if (arguments.at(i) == QLatin1String("--timeout"))
            ++i;
        else if (!arguments.at(i).startsWith(QLatin1Char('-')))
            return i;
    }
    return -1;
}

/// One line a command, and how to learn more.
QString overview()
{
    int widest = 0;
    for (const Command *command : commands)
        widest = std::max(widest, int(qstrlen(command->name)));
    QString text = qtTrId("lumctl-usage") + QLatin1String("\n\n");
    for (const Command *command : commands) {
        if (command->summary)
            text += QStringLiteral("  %1  %2\n")
                        .arg(QLatin1String(command->name), -widest)
                        .arg(command->summary());
    }
    return text + QLatin1Char('\n') + qtTrId("lumctl-usage-more") + QLatin1Char('\n');
}

void addOptions(QCommandLineParser &parser, const Command &command)
{
    parser.addOption({{QStringLiteral("h"), QStringLiteral("help")}, qtTrId("lumctl-option-help")});
    parser.addOption({jsonOption, qtTrId("lumctl-option-json")});
    parser.addOption({timeoutOption, qtTrId("lumctl-option-timeout"), QStringLiteral("SECONDS"),
        QString::number(command.timeLimit)});
    if (command.addOptions)
        command.addOptions(parser);
    parser.addPositionalArgument(QLatin1String(command.name),
        command.summary ? command.summary() : QString(),
        QStringLiteral("%1 %2").arg(QLatin1String(command.name), QLatin1String(command.arguments)));
}

/// The option's seconds; nothing when they are none.
std::optional<std::chrono::seconds> timeLimit(const QCommandLineParser &parser)
{
    constexpr int aYear = 365 * 24 * 60 * 60;
    bool isNumber = false;
    const int seconds = parser.value(timeoutOption).toInt(&isNumber);
    const int least = parser.isSet(timeoutOption) ? 1 : 0;
    if (!isNumber || seconds < least || seconds > aYear)
        return {};
    return std::chrono::seconds(seconds);
}

QString withHint(const QString &text)
{
    return QStringLiteral("%1 (%2)").arg(text, qtTrId("lumctl-see-help"));
}

/// As the shell expects of a program that a signal has ended.
void endBySignal(int number)
{
    std::signal(number, SIG_DFL);
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, number);
    sigprocmask(SIG_UNBLOCK, &signals, nullptr);
    std::raise(number);
}

/// The parser need not know of JSON: a wrong use is told in that form too.
Output::Form formOf(const QStringList &arguments)
{
    return arguments.contains(QLatin1String("--json")) ? Output::Form::Json : Output::Form::Words;
}

ExitCode misused(
    const QCommandLineParser &parser, const QStringList &arguments, const QString &text)
{
    Output output(formOf(arguments));
    Session session(parser, {}, output, std::chrono::seconds(1));
    return session.misused(withHint(text));
}

ExitCode run(const Command &command, QCommandLineParser &parser, QStringList arguments)
{
    addOptions(parser, command);
    const bool isParsed = parser.parse(arguments);
    Output output(formOf(arguments));
    if (isParsed && parser.isSet(QStringLiteral("help"))) {
        print(stdout, parser.helpText());
        return ExitCode::Success;
    }
    arguments = parser.positionalArguments().mid(1);
    const auto limit = timeLimit(parser);
    Session session(parser, arguments, output, limit.value_or(std::chrono::seconds(1)));
    if (!isParsed)
        return session.misused(withHint(shownName(parser.errorText())));
    if (!limit)
        return session.misused(withHint(qtTrId("lumctl-bad-timeout")));
    if (arguments.size() < command.fewest
        || (command.most != anyNumber && arguments.size() > command.most))
        return session.misused(withHint(qtTrId("lumctl-bad-arguments")
                .arg(QLatin1String(command.name), QLatin1String(command.arguments))));
    const ExitCode code = command.run(session);
    if (session.caughtSignal() != 0)
        endBySignal(session.caughtSignal());
    return code;
}

ExitCode run(const QStringList &arguments)
{
    QCommandLineParser parser;
    const int place = placeOfCommand(arguments);
    if (place < 0) {
        const bool isHelp =
            arguments.contains(QLatin1String("--help")) || arguments.contains(QLatin1String("-h"));
        if (arguments.contains(QLatin1String("--version"))) {
            print(stdout, QStringLiteral("lumctl %1\n").arg(QLatin1String(LUMD_VERSION)));
            return ExitCode::Success;
        }
        if (!isHelp && arguments.contains(QLatin1String("--json")))
            return misused(parser, arguments, qtTrId("lumctl-usage"));
        print(isHelp ? stdout : stderr, overview());
        return isHelp ? ExitCode::Success : ExitCode::Usage;
    }
    const auto found = std::find_if(
        std::begin(commands), std::end(commands), [&arguments, place](const Command *command) {
            return arguments.at(place) == QLatin1String(command->name);
        });
    if (found != std::end(commands))
        return run(**found, parser, arguments);
    return misused(
        parser, arguments, qtTrId("lumctl-no-such-command").arg(shownName(arguments.at(place))));
}

void installCatalogue(QTranslator &translator, const QString &name)
{
    if (translator.load(name, QLatin1String(translations), QString(), QString()))
        QCoreApplication::installTranslator(&translator);
}

} // namespace

int main(int argc, char *argv[])
{
    // File names and the bus are in UTF-8, whatever the locale.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    const QCoreApplication application(argc, argv);

    // The translator installed last is asked first: the user's language wins.
    QTranslator engineeringEnglish;
    installCatalogue(engineeringEnglish, QStringLiteral("lumctl_eng_en"));
    QTranslator ofQt;
    QTranslator locale;
    if (locale.load(QLocale(), QStringLiteral("lumctl"), QStringLiteral("-"),
            QLatin1String(translations), QString())) {
        // What Qt itself says of a wrong command line.
        if (ofQt.load(QLocale(), QStringLiteral("qtbase"), QStringLiteral("_"),
                QLibraryInfo::location(QLibraryInfo::TranslationsPath)))
            QCoreApplication::installTranslator(&ofQt);
        QCoreApplication::installTranslator(&locale);
    }
    return int(run(QCoreApplication::arguments()));
}
