#pragma once

// Photos by date: what the screen shows of a range of pictures, in which words, and what may be pressed. It
// also puts the library's own questions to the person.

#include "Media/PhotoCleanup.h"
#include "Screens/PaneState.h"

#include <QDateTime>
#include <QPromise>

namespace Quillbrook {

class FileRevealer;
class RemovalQueue;

class PhotosState : public PaneState, public PhotoQuestions
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    /// Which of the three things below the header stands there; none before the library has answered.
    Q_PROPERTY(bool asksForAccess READ asksForAccess NOTIFY accessChanged FINAL)
    Q_PROPERTY(bool isDeclined READ isDeclined NOTIFY accessChanged FINAL)
    Q_PROPERTY(bool hasPicker READ hasPicker NOTIFY accessChanged FINAL)

    Q_PROPERTY(QDateTime from READ from NOTIFY rangeChanged FINAL)
    Q_PROPERTY(QDateTime to READ to NOTIFY rangeChanged FINAL)
    Q_PROPERTY(bool includesVideos READ includesVideos NOTIFY rangeChanged FINAL)
    Q_PROPERTY(QString measureText READ measureText NOTIFY workChanged FINAL)
    Q_PROPERTY(bool canMeasure READ canMeasure NOTIFY workChanged FINAL)
    /// How far what runs is, in words; empty while nothing does, or has nothing to tell yet. What is told of
    /// can be stopped.
    Q_PROPERTY(QString progress READ progress NOTIFY workChanged FINAL)

    Q_PROPERTY(bool hasResult READ hasResult NOTIFY resultChanged FINAL)
    Q_PROPERTY(QString resultTitle READ resultTitle NOTIFY resultChanged FINAL)
    Q_PROPERTY(QString resultText READ resultText NOTIFY resultChanged FINAL)
    /// Empty where most of them lie here.
    Q_PROPERTY(QString elsewhereText READ elsewhereText NOTIFY resultChanged FINAL)
    Q_PROPERTY(QString emptyingText READ emptyingText NOTIFY workChanged FINAL)
    Q_PROPERTY(QString deleteText READ deleteText NOTIFY resultChanged FINAL)
    Q_PROPERTY(bool canDelete READ canDelete NOTIFY workChanged FINAL)
    Q_PROPERTY(QString confirmTitle READ confirmTitle NOTIFY resultChanged FINAL)

    Q_PROPERTY(QString lastResult READ lastResult NOTIFY lastResultChanged FINAL)
    Q_PROPERTY(QString furtherLines READ furtherLines NOTIFY lastResultChanged FINAL)
    Q_PROPERTY(bool canPutBack READ canPutBack NOTIFY workChanged FINAL)
    Q_PROPERTY(QString putBackText READ putBackText NOTIFY workChanged FINAL)

    /// The question of the library that waits for an answer; title and text are empty without one.
    Q_PROPERTY(QString questionTitle READ questionTitle NOTIFY questionChanged FINAL)
    Q_PROPERTY(QString questionText READ questionText NOTIFY questionChanged FINAL)
    /// The words on the buttons that answer it.
    Q_PROPERTY(QString questionYes READ questionYes NOTIFY questionChanged FINAL)
    Q_PROPERTY(QString questionNo READ questionNo NOTIFY questionChanged FINAL)
    Q_PROPERTY(bool isAskedToDelete READ isAskedToDelete NOTIFY questionChanged FINAL)

public:
    struct Services
    {
        PhotoLibrary &library;
        FileRevealer &revealer;
        const Clock &clock;
        /// In which deletions and returns wait their turn; on a thread of their own without it.
        RemovalQueue *removals = nullptr;
    };

    explicit PhotosState(const Services &services, QObject *parent = nullptr);
    ~PhotosState() override;

    [[nodiscard]] bool asksForAccess() const;
    [[nodiscard]] bool isDeclined() const;
    [[nodiscard]] bool hasPicker() const;
    [[nodiscard]] QDateTime from() const { return m_photos.from(); }
    [[nodiscard]] QDateTime to() const { return m_photos.to(); }
    [[nodiscard]] bool includesVideos() const { return m_photos.includeVideos(); }
    [[nodiscard]] QString measureText() const;
    [[nodiscard]] bool canMeasure() const;
    [[nodiscard]] QString progress() const;
    [[nodiscard]] bool hasResult() const;
    [[nodiscard]] QString resultTitle() const;
    [[nodiscard]] QString resultText() const;
    [[nodiscard]] QString elsewhereText() const;
    [[nodiscard]] QString emptyingText() const;
    [[nodiscard]] QString deleteText() const;
    [[nodiscard]] bool canDelete() const;
    [[nodiscard]] QString confirmTitle() const;
    [[nodiscard]] QString lastResult() const;
    [[nodiscard]] QString furtherLines() const;
    [[nodiscard]] bool canPutBack() const;
    [[nodiscard]] QString putBackText() const;
    [[nodiscard]] QString questionTitle() const { return m_question.title; }
    [[nodiscard]] QString questionText() const { return m_question.text; }
    [[nodiscard]] QString questionYes() const;
    [[nodiscard]] QString questionNo() const;
    [[nodiscard]] bool isAskedToDelete() const { return m_question.isToDelete; }

    /// Later, not within the press: the desktop's own window has an event loop of its own.
    Q_INVOKABLE void allow();
    Q_INVOKABLE void setFrom(const QDateTime &from) { m_photos.setFrom(from); }
    Q_INVOKABLE void setTo(const QDateTime &to) { m_photos.setTo(to); }
    Q_INVOKABLE void setIncludesVideos(bool included) { m_photos.setIncludeVideos(included); }
    Q_INVOKABLE void measure() { m_photos.measure(); }
    Q_INVOKABLE void stop() { m_photos.stop(); }
    Q_INVOKABLE void deleteRange() { m_photos.deleteRange(); }
    Q_INVOKABLE void putBack() { m_photos.putBack(); }
    Q_INVOKABLE void showInTrash();
    /// Answers the question that waits; nothing happens without one.
    Q_INVOKABLE void answer(bool isAllowed);

    [[nodiscard]] QFuture<bool> mayRead(const QStringList &folders) override;
    [[nodiscard]] QFuture<bool> mayDelete(qsizetype count) override;

    void recheck() override;

Q_SIGNALS:
    void accessChanged();
    void rangeChanged();
    void workChanged();
    void resultChanged();
    void lastResultChanged();
    void questionChanged();

protected:
    void appear() override;

private:
    struct Question
    {
        QString title{};
        QString text{};
        bool isToDelete = false;
        std::optional<QPromise<bool>> answer{};
    };

    [[nodiscard]] QFuture<bool> ask(const QString &title, const QString &text, bool isToDelete);
    [[nodiscard]] QString count() const;
    [[nodiscard]] bool mayChange() const;

    FileRevealer &m_revealer;
    RemovalQueue *m_removals;
    Question m_question;
    PhotoCleanup m_photos;
};

} // namespace Quillbrook
