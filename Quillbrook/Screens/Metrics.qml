pragma Singleton
pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// Sizes, radii, type and motion of every screen. Lengths are in pixels at scale 1; font sizes are in points,
// because only those may be fractions of a pixel.
QtObject {
    id: root

    // Window.
    readonly property int windowWidth: 1260
    readonly property int windowHeight: 820
    readonly property int windowMinimumWidth: 1040
    readonly property int windowMinimumHeight: 680
    readonly property int sidebarWidth: 235
    readonly property int sidebarRowHeight: 32
    readonly property int topBarHeight: 51
    readonly property int askBarHeight: 42
    readonly property int columnWidth: 620
    readonly property int scanningTop: 88
    readonly property int noticeWidth: 440
    readonly property int panelWidth: 340

    // The 4-point grid.
    readonly property int space4: 4
    readonly property int space8: 8
    readonly property int space12: 12
    readonly property int space16: 16
    readonly property int space20: 20
    readonly property int space24: 24
    readonly property int paneInset: 20
    readonly property int sidebarInset: 10
    readonly property int panelInset: 18
    readonly property int panelFootInset: 14
    readonly property int panelGap: 18

    // Shapes.
    readonly property int hairlineWidth: 1
    readonly property int cardRadius: 10
    readonly property int controlRadius: 7
    readonly property int tickRadius: 4
    readonly property int focusRingWidth: 2
    readonly property int focusRingGap: 2
    readonly property int controlHeight: 28
    readonly property int prominentHeight: 32
    readonly property int fieldHeight: 30
    readonly property int rowHeight: 39
    readonly property int gaugeBarHeight: 6
    readonly property int progressBarHeight: 8
    readonly property int tickSize: 16
    readonly property int switchWidth: 34
    readonly property int switchHeight: 20
    readonly property int sliderTrack: 4
    readonly property int sliderKnob: 18
    readonly property int segmentGap: 2
    readonly property int segmentPadding: 14
    readonly property int segmentHeight: 26
    readonly property int segmentRadius: 5
    readonly property int dateFieldWidth: 196
    readonly property int rowActionWidth: 64
    readonly property int bringBackWidth: 96
    readonly property int statTileHeight: 92
    readonly property int statTileRadius: 8
    readonly property int statFigureLine: 36
    readonly property int trendWidth: 120
    readonly property int trendHeight: 48
    readonly property int scrollBarWidth: 6
    readonly property int sheetWidth: 560
    readonly property int dialogWidth: 420
    readonly property int dotSize: 8
    readonly property int sizeColumnWidth: 86
    readonly property int nodeRowHeight: 48
    readonly property int appRowHeight: 57
    readonly property int appIconSize: 34
    readonly property int appTagWidth: 160
    readonly property int sheetIconSize: 42
    readonly property int filterWidth: 220
    readonly property int breadcrumbHeight: 46
    readonly property int crumbWidth: 240
    readonly property int selectionBarHeight: 54
    readonly property int selectionNameWidth: 120
    readonly property int wardenHeaderHeight: 79
    readonly property int wardenHeadingHeight: 40
    readonly property int findingInset: 14
    readonly property int bannerGap: 10
    readonly property int heldRowHeight: 40
    readonly property int heldNameLeft: 48
    readonly property int heldNameWidth: 244
    readonly property int heldAgeWidth: 88
    readonly property int heldSizeWidth: 72
    readonly property int chevronSide: 28
    readonly property int listInDialogHeight: 200
    readonly property int introWidth: 752
    readonly property int bubbleSpacer: 60
    readonly property int bubblePaddingX: 14
    readonly property int bubblePaddingY: 9
    readonly property int chipGap: 7
    readonly property int proposalWidth: 640
    readonly property int proposalInset: 18
    readonly property int proposalListHeight: 420
    readonly property int tooltipWidth: 320
    readonly property int tooltipPaddingX: 9
    readonly property int tooltipPaddingY: 6
    readonly property int shadowRadius: 3
    readonly property int sheetShadowRadius: 44
    readonly property int sheetShadowDrop: 16

    // Symbols.
    readonly property int symbolTiny: 9
    readonly property int symbolSmall: 11
    readonly property int symbolMedium: 14
    readonly property int symbolSize: 16
    readonly property int symbolLarge: 20
    readonly property int symbolHuge: 40

    // Type, in points that come out as the pixels named.
    readonly property real sectionFont: 10.5 * Theme.pointsPerPixel
    readonly property real tinyFont: 11 * Theme.pointsPerPixel
    readonly property real captionFont: 11.5 * Theme.pointsPerPixel
    readonly property real warningFont: 12 * Theme.pointsPerPixel
    readonly property real smallFont: 12.5 * Theme.pointsPerPixel
    readonly property real bodyFont: 13 * Theme.pointsPerPixel
    readonly property real messageFont: 13.5 * Theme.pointsPerPixel
    readonly property real headingFont: 15 * Theme.pointsPerPixel
    readonly property real statFont: 28 * Theme.pointsPerPixel
    readonly property real figureFont: 25 * Theme.pointsPerPixel
    readonly property real sectionTracking: 0.84
    readonly property int textLine: 18
    readonly property int captionLine: 16
    readonly property real looseLines: 1.15

    // States of a control are told by opacity alone.
    readonly property real hoverOpacity: 0.06
    readonly property real pressedOpacity: 0.12
    readonly property real disabledOpacity: 0.45
    readonly property real faintOpacity: 0.6
    // Of text that steps back, and of a ground that lifts text off the page: both keep it at 4.5 to 1.
    readonly property real quietOpacity: 0.88
    readonly property real liftOpacity: 0.2
    readonly property real tintOpacity: 0.05
    readonly property real scrimOpacity: 0.25

    // Motion, in milliseconds; none where the desktop asks for none, which the window tells.
    property bool reducedMotion: false
    readonly property int quickMotion: reducedMotion ? 0 : 120
    readonly property int sheetMotion: reducedMotion ? 0 : 180
    readonly property int helpDelay: 600
}
