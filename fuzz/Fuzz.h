#pragma once

#include <QByteArray>
#include <QString>

class TestProfile;

/// What a target does with one input: reads it as the agent does, and holds what comes out to what the agent promises.
/// Each target defines it.
void tryInput(const QByteArray &input);

/// Ends the process, which is a finding, unless @p holds.
void require(bool holds, const char *promise);

/// That @p path is one file directly in @p folder, by a name that a file system takes.
void requireFileIn(const QString &folder, const QString &path);

/// The throw-away home of this process.
[[nodiscard]] const TestProfile &home();

/// The member @p name of "idTokens" in tests/data/signing.json; objects as JSON.
[[nodiscard]] QByteArray sampleToken(const char *name);
