// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "client/lumdclient.h"

#include <QObject>
#include <QUrl>

class LumdService;

/// One Android app, and what can be done to it. All texts are fit to be shown as plain text.
class App : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString package READ package CONSTANT)
    Q_PROPERTY(QString shownPackage READ shownPackage CONSTANT)
    Q_PROPERTY(QString name READ name NOTIFY changed)
    Q_PROPERTY(QString version READ version NOTIFY changed)
    Q_PROPERTY(QUrl icon READ icon NOTIFY changed)
    Q_PROPERTY(QString otherLaunchers READ otherLaunchers NOTIFY changed)

    Q_PROPERTY(bool knowsSizes READ knowsSizes NOTIFY sizesChanged)
    Q_PROPERTY(double codeSize READ codeSize NOTIFY sizesChanged)
    Q_PROPERTY(double dataSize READ dataSize NOTIFY sizesChanged)
    Q_PROPERTY(double cacheSize READ cacheSize NOTIFY sizesChanged)
    Q_PROPERTY(QString codeText READ codeText NOTIFY sizesChanged)
    Q_PROPERTY(QString dataText READ dataText NOTIFY sizesChanged)
    Q_PROPERTY(QString cacheText READ cacheText NOTIFY sizesChanged)
    Q_PROPERTY(QString sizeText READ sizeText NOTIFY sizesChanged)

    Q_PROPERTY(bool knowsStartOnBoot READ knowsStartOnBoot NOTIFY startOnBootChanged)
    Q_PROPERTY(bool startOnBoot READ startOnBoot NOTIFY startOnBootChanged)

    Q_PROPERTY(Removal removal READ removal NOTIFY removalChanged)
    Q_PROPERTY(QString remark READ remark NOTIFY remarkChanged)
    Q_PROPERTY(bool isProblem READ isProblem NOTIFY remarkChanged)

public:
    /// What became of the wish to remove it.
    enum Removal {
        Installed,
        Queued, ///< kept until the runtime is up
        Removing,
    };
    Q_ENUM(Removal)

    App(const AndroidApp &app, LumdService *service, QObject *parent);

    /// Takes over what has changed. The first launcher that is not hidden names the app.
    void update(const AndroidApp &app);
    /// As lumd answers it.
    void setSizes(const AppSize &size);
    void forgetSizes();

    QString package() const { return m_package; }
    QString shownPackage() const;
    QString name() const { return m_name; }
    QString version() const { return m_version; }
    /// Empty when the app has none of its own.
    QUrl icon() const { return m_icon; }
    /// The names of the launchers beside the first, or an empty text.
    QString otherLaunchers() const { return m_otherLaunchers; }

    bool knowsSizes() const { return m_knowsSizes; }
    double codeSize() const { return m_codeSize; }
    double dataSize() const { return m_dataSize; }
    double cacheSize() const { return m_cacheSize; }
    QString codeText() const;
    QString dataText() const;
    QString cacheText() const;
    /// The sum; an empty text while it is not known.
    QString sizeText() const;

    bool knowsStartOnBoot() const { return m_knowsStartOnBoot; }
    bool startOnBoot() const { return m_startOnBoot; }

    Removal removal() const { return m_removal; }
    /// How the last action went, for the user; may be empty.
    QString remark() const { return m_remark; }
    bool isProblem() const { return m_isProblem; }

    /// Asks for the sizes, which come when it is this app's turn.
    Q_INVOKABLE void askForSizes();
    Q_INVOKABLE void askForStartOnBoot();

    Q_INVOKABLE void launch();
    Q_INVOKABLE void stop();
    Q_INVOKABLE void setStartOnBoot(bool isWanted);
    Q_INVOKABLE void clearCache();
    Q_INVOKABLE void clearData();
    Q_INVOKABLE void openSettings();
    Q_INVOKABLE void remove();
    Q_INVOKABLE void clearRemark();

Q_SIGNALS:
    void changed();
    void sizesChanged();
    void sizesAskedFor();
    void startOnBootChanged();
    void removalChanged();
    void remarkChanged();
    /// It takes up another amount of space than before.
    void spaceChanged();

private:
    using Operation = void (LumdClient::*)(const QString &, const Done<Nothing> &);

    void request(Operation operation, const QString &doneRemark);
    void onState();
    void onRemoveAnswered(const Answer<bool> &answer);
    void setRemoval(Removal removal);
    void setRemark(const QString &remark, bool isProblem);
    void setStartOnBootKnown(bool isAllowed);

    LumdService *m_service;
    QString m_package;
    QString m_name;
    QString m_version;
    QUrl m_icon;
    QString m_otherLaunchers;
    bool m_knowsSizes = false;
    double m_codeSize = 0;
    double m_dataSize = 0;
    double m_cacheSize = 0;
    bool m_knowsStartOnBoot = false;
    bool m_startOnBoot = false;
    Removal m_removal = Installed;
    QString m_remark;
    bool m_isProblem = false;
};
