#pragma once
// The run state: one flat record of every value a vote run shares between its modules.
// Made once per process with numbers 0, strings empty and flags false; a second entry
// into Main keeps whatever that entry does not set again.

#include "foundation/vb_array.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <random>

namespace tallix {

class SettingsDocument;
namespace host {
class Application;
class Presentation;
} // namespace host

// One answer option of the question.
struct VoteOption {
    QString text;
    bool isCorrect = false;
    double value = 0;
    QString groupOptionName;
    bool isGroupOption = false;
    bool isHighest = false;
};

struct GraphOutlineSettings {
    bool Visible = false;
    int Colour = 0;
    short FillStyle = 0;
};

struct FontSettings {
    int Colour = 0;
    int Colour2 = 0;
    QString Name;
    QString Bold;   // kept as the document has it
    bool Italic = false;
    bool Underline = false;
    bool StrikeThrough = false;
    short Size = 0;
    int ShadowColour = 0;
    bool ShadowVisible = false;
};

struct ChartDimension {
    short MarginTop = 0;
    short MarginLeft = 0;
    short MarginBottom = 0;
    short MarginRight = 0;
    float PositionTop = 0;
    float PositionLeft = 0;
};

// One chart's legend as its settings give it.
struct LegendRecord {
    short Show = 0; // above 0: the chart shows a legend
    QString Name;
    qint32 Colour = 0;
    short Size = 0;
    bool Bold = false;
    bool Italic = false;
    bool Underline = false;
    bool StrikeThrough = false;
    short Alignment = 1;
    bool HidePen = false; // the symbols are drawn without their outline
    QString Text;         // the entry of a reshow legend
};

// The chart's area on the slide, each figure a fraction of the slide's size.
struct VArea {
    QString questionSlideRef;
    float Width = 0;
    float Height = 0;
    float Left = 0;
    float Top = 0;
};

struct RankPositionRecord {
    float X = 0;
    float Y = 0;
    float W = 0;
    float L = 0;
};

struct TextPositionCell {
    double X = 0;
    double Y = 0;
};

// A window's rectangle in screen pixels, edges as the window system gives them.
struct WindowRect {
    int Left = 0;
    int Top = 0;
    int Right = 0;
    int Bottom = 0;
    int width() const { return Right - Left; }
    int height() const { return Bottom - Top; }
    bool isZero() const { return Left == 0 && Top == 0 && Right == 0 && Bottom == 0; }
    bool operator==(const WindowRect&) const = default;
};

struct Participant {
    QString name;
    qint32 number = 0;
    double weighting = 1;
    bool seen = false;
};

struct RunState {
    RunState();
    ~RunState();
    RunState(const RunState&) = delete;
    RunState& operator=(const RunState&) = delete;

    // Launch and host
    QString commandLine;   // the launch string as the program was given it
    QString arg1, arg2, arg3, arg4, arg5;
    bool makeMode = false;
    bool internalRestart = false;
    bool voteRunning = false;
    bool settingsReady = false;
    host::Application* oPPT = nullptr;
    host::Presentation* oPres = nullptr;
    std::unique_ptr<SettingsDocument> settingsDoc;
    qint32 PowerPoint_hWnd = 0;
    qint32 PowerPointSlideShow_hwnd = 0;
    // Window placing: the edit window and the show's picture, refreshed by RecordPPTHandles.
    WindowRect PowerPointRECT;
    WindowRect PowerPointSlideShowRECT;
    short currentSlide = 0;
    QString addInPath;
    QString localDecimal;
    qint64 perfFrequency = 0;
    short screenWidthPixels = 0;
    QStringList slideShapeNames;
    // Names of the "tlx" shapes of one slide; element 0 holds that slide's number.
    VbArray<QString> pptShapeCache;
    bool pptShapeCacheFilled = false;
    QStringList rndTextList;
    bool rndTextsLoaded = false;
    std::mt19937 rnd;

    // Settings that decide the run (from the settings document)
    short vType = 0;
    short SeriesVType = 0;
    short GraphType = 0;
    short optionCount = 0;   // the key `options`
    short optionsCopy = 0;
    short startFrom = 0;
    bool allowAbstain = false;   // the key `Abstain`
    short TimeLeft = 0;
    bool CountDownManualStart = false;
    bool CountDownManualEnd = false;
    bool ShowVotesIndicator = false;
    bool AutoStart = false;
    // True while FullShutDown runs: a click or key that asks for the end again meanwhile
    // (during the AutoAdvance wait, say) must not save, run macros and wait a second time.
    bool shuttingDown = false;
    bool AutoAdvance = false;
    qint32 AutoAdvanceTime = 0;
    short Iterations = 0;
    short DisplayBy = 0;
    bool Exclusive = false;
    bool RequireAll = false;
    short NumberRankVotes = 0;
    short NumberTextVotes = 0;
    short FixedFree = 0;
    short FractionalJoltTEXT = 0;
    bool JoltMultiVote = false;
    short PriorMultiVote = 0;
    short NumberDecimalPlaces = 0;
    short NumberSigFigs = 0;
    short FreeNumDisplay_Type = 0;
    short FreeNumDisplay_Order = 0;
    bool FreeNumDisplay_ShowKP = false;
    short Joltdisplay = 0;
    QString WCColour[2];
    QString WCFontSize[2];
    bool WLSShow = false;
    short WLSListManagementMode = 0;
    short WLSDisplay = 0;
    float WLSSpeed = 0;
    bool WLSUseResponsesAsNames = false;
    short showAsPercentOrNumber = 0;
    short showAsBothStackedOrSide = 0;
    QString SoundFile;
    double HeightRatio = 0;
    double WidthRatio = 0;
    short ThreeDTwoD = 0;
    bool ShowGraphs = false;
    QString VotesCastLabel;
    float vCastLeft = 0;
    float vCastTop = 0;
    short haveTick = 0;
    short CorrectAnswerStyle = 0;
    qint32 tickColour = 0;
    short FreeOnlyShowMatching = 0;
    bool OnlyHighlightHighest = false;
    short UseUserWeighting = 0;
    bool ParticipantWeighting = false;
    short Quilmark_Display = 0;
    double PercentDP = 0;

    // Chart settings
    short GraphPlotting = 1;   // starts at 1 so the chart grows; the key's presence clears it
    short GrowSpeed = 0;
    short AspectRatio = 0;
    short ArrowLength = 0;
    bool PieFocus = false;
    bool ShowVoteOptionLabels = false;
    short BarsPerPage = 0;
    short BarSortOrder = 0;
    bool InvertScale = false;
    bool GradientColourShow = false;
    qint32 GradientColour = 0;
    short GradientDirection = 0;
    bool PPTColourScheme = false;
    GraphOutlineSettings GraphOutline;
    VbArray<qint32> optionColours;
    VbArray<qint32> seriesColours;   // one per selection of a series, 0..10
    VbArray<double> BarSpacing;
    VbArray<short> BarDepth;
    VbArray<ChartDimension> ChartDimensions;
    VbArray<LegendRecord> Legends;
    FontSettings Font;
    short FontSize = 0;
    VbArray<VArea> vArea;

    // A reshow: the charts' filters, how their parts join, the question list it was made
    // from, and the slides' list the references are found in again.
    VbArray<QString> reshowFilter;
    short rshFilterType = 0;          // 1: a keypad meeting any part counts; else all parts
    bool filterStarted = false;
    bool reshowOnOneChart = false;
    bool ShowLabels = false;
    QString questionReferences;
    QString reshowTitle;
    QStringList slideList;
    // The title of the chart being drawn, for its header; empty for none.
    QString chartTitle;

    // Rating, text and series settings
    float BarVerticalSpacing = 0;
    qint32 BarColour = 0;
    short rankDisplayOptions = 0;
    qint32 HighlightColour = 0;
    short HighlightRank = 0;
    qint32 MarkerColour = 0;
    short MarkerCharacter = 0;
    VbArray<RankPositionRecord> RankPosition;
    short HorizontalSpacing = 0;
    short VerticalSpacing = 0;
    VbArray2<TextPositionCell> textPosition;
    QString seriesvoteIterationText;
    bool SeriesPercentVsTotalKpads = false;
    short UseWeighting = 0;
    short MaxPointsAvailable = 0;
    short MaxPointsPerItem = 0;
    VbArray<double> SeriesWeighting;

    // Live vote state
    qint32 keypadUniverse = 0;
    qint32 firstKeypad = 1;
    VbArray<QString> votes;
    VbArray<QString> votesBackup;
    VbArray<float> voteTimes;
    VbArray2<float> seriesVotes;
    VbArray2<short> ratingVotes;
    // A rating vote's results: each item's average mark, and how many gave each mark
    // (mark index, item index).
    VbArray<float> ratingAverages;
    VbArray2<float> ratingDistribution;
    VbArray<short> groupFilter;
    QStringList activeKeypads;
    QStringList respondedKeypads;
    qint32 notVotedCount = 0;
    short notVotedPopupAt = 0;
    short notVotedShowCount = 20;
    short autoEndByPercent = 0;
    float autoEndPercent = 0;
    qint32 votesCast = 0;
    short voteEnded = 0;
    short voteCancelled = 0;
    bool voteReceived = false;
    short countDownExpired = 0;
    QString BaseType;
    QString controllerVoteType;
    QString keypadDisplayText;
    qint32 Limits = 0;
    // Free-entry votes: what the keypads are told, and the answers as they come.
    QString questionText;
    qint32 Allocation = 0;
    qint32 Points = 0;
    QString bannedWords;          // lower-case words, each wrapped in "|"
    QStringList responseList;     // every accepted answer, oldest first
    qint32 scrollPos = 0;
    VbArray<double> aScores;
    short currentIteration = 0;
    // The selection whose text results are being written; -1 for the totals.
    short textResultsIteration = -1;
    short rankItemIndex = 0;
    bool ratingVoteOpen = false;
    short ratingVoteStarted = 0;
    bool randomFill = false;
    bool liveChartDirty = false;
    qint32 liveLineCount = 0;
    double dynamicChartLastDraw = 0;
    float commsWaitStart = 0;
    bool voteEndRecorded = false;   // RecordVoteEnd acts once per process
    QString processTimeLog;
    double processTimeFirst = 0;
    double processTimeLast = 0;
    bool notVotedShown = false;     // the not-voted list opens by itself once a vote

    // What the controller reported of its bases
    qint32 maxKeypads = 0;
    qint32 numKeypads = 0;
    bool useOffsets = false;
    bool scrollingDisplay = false;
    VbArray<short> baseOffsets;
    VbArray<QString> keypadRows;   // "local number,offset,base index" per active keypad
    QString allKeypadsText;        // every keypad of every base in use, each followed by ","

    // Per-keypad work arrays kept in step with `votes` by AllocArrays.
    VbArray<short> keypadWork1;
    VbArray<short> keypadWork2;
    VbArray<short> keypadWork3;

    VbArray<VoteOption> voteOptions;
    VbArray<Participant> participants;

    // Collation results, read by the charts. Main makes the arrays anew at each entry;
    // the two totals are never cleared, so a second collation in a process adds to them.
    VbArray<double> optionCounts;
    VbArray2<double> seriesCounts;
    short votersCounted = 0;
    double weightedVoteTotal = 0;
    double abstainTotal = 0;
    qint32 seriesVoterTotal = 0;
};

} // namespace tallix
