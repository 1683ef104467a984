// SPDX-License-Identifier: AGPL-3.0-only
// The VST 2.4 interface, second half: what versions 2.0 to 2.4 added, and the opcodes from plug-in to host. See
// aeffect.h for why it is written here.
#pragma once

#include "pluginterfaces/vst2.x/aeffect.h"

// A macro because JUCE's wrapper names it outside the namespace into which it includes this file.
#define kVstVersion 2400

/** Host to plug-in, added by versions 2.0 to 2.4. */
enum AEffectXOpcodes
{
    effProcessEvents = 25,
    effCanBeAutomated = 26,
    effString2Parameter = 27,
    effGetProgramNameIndexed = 29,
    effConnectInput = 31,
    effConnectOutput = 32,
    effGetInputProperties = 33,
    effGetOutputProperties = 34,
    effGetPlugCategory = 35,
    effSetSpeakerArrangement = 42,
    effSetBypass = 44,
    effGetEffectName = 45,
    effGetVendorString = 47,
    effGetProductString = 48,
    effGetVendorVersion = 49,
    effVendorSpecific = 50,
    effCanDo = 51,
    effGetTailSize = 52,
    effIdle = 53,
    effKeysRequired = 57,
    effGetVstVersion = 58,
    effGetCurrentMidiProgram = 63,
    effGetMidiKeyName = 66,
    effBeginSetProgram = 67,
    effEndSetProgram = 68,
    effGetSpeakerArrangement = 69,
    effShellGetNextPlugin = 70,
    effStartProcess = 71,
    effStopProcess = 72,
    effSetTotalSampleToProcess = 73,
    effSetProcessPrecision = 77,
    effGetNumMidiInputChannels = 78,
    effGetNumMidiOutputChannels = 79
};

/** Plug-in to host, the opcodes of the interface's first version. */
enum AudioMasterOpcodes
{
    audioMasterAutomate = 0,
    audioMasterVersion = 1,
    audioMasterCurrentId = 2,
    audioMasterIdle = 3,
    audioMasterPinConnected = 4
};

/** Plug-in to host, added by versions 2.0 to 2.4. */
enum AudioMasterOpcodesX
{
    audioMasterWantMidi = 6,
    audioMasterGetTime = 7,
    audioMasterProcessEvents = 8,
    audioMasterSetTime = 9,
    audioMasterTempoAt = 10,
    audioMasterGetNumAutomatableParameters = 11,
    audioMasterGetParameterQuantization = 12,
    audioMasterIOChanged = 13,
    audioMasterNeedIdle = 14,
    audioMasterSizeWindow = 15,
    audioMasterGetSampleRate = 16,
    audioMasterGetBlockSize = 17,
    audioMasterGetInputLatency = 18,
    audioMasterGetOutputLatency = 19,
    audioMasterGetPreviousPlug = 20,
    audioMasterGetNextPlug = 21,
    audioMasterWillReplaceOrAccumulate = 22,
    audioMasterGetCurrentProcessLevel = 23,
    audioMasterGetAutomationState = 24,
    audioMasterOfflineStart = 25,
    audioMasterOfflineRead = 26,
    audioMasterOfflineWrite = 27,
    audioMasterOfflineGetCurrentPass = 28,
    audioMasterOfflineGetCurrentMetaPass = 29,
    audioMasterSetOutputSampleRate = 30,
    audioMasterGetOutputSpeakerArrangement = 31,
    audioMasterGetVendorString = 32,
    audioMasterGetProductString = 33,
    audioMasterGetVendorVersion = 34,
    audioMasterVendorSpecific = 35,
    audioMasterSetIcon = 36,
    audioMasterCanDo = 37,
    audioMasterGetLanguage = 38,
    audioMasterOpenWindow = 39,
    audioMasterCloseWindow = 40,
    audioMasterGetDirectory = 41,
    audioMasterUpdateDisplay = 42,
    audioMasterBeginEdit = 43,
    audioMasterEndEdit = 44
};

/** Lengths of texts, in bytes. */
enum Vst2StringConstants
{
    kVstMaxNameLen = 64,
    kVstMaxLabelLen = 64,
    kVstMaxShortLabelLen = 8
};

/** Answers to effGetPlugCategory. */
enum VstPlugCategory
{
    kPlugCategUnknown = 0,
    kPlugCategEffect = 1,
    kPlugCategSynth = 2,
    kPlugCategAnalysis = 3,
    kPlugCategMastering = 4,
    kPlugCategSpacializer = 5,
    kPlugCategRoomFx = 6,
    kPlugSurroundFx = 7,
    kPlugCategRestoration = 8,
    kPlugCategOfflineProcess = 9,
    kPlugCategShell = 10,
    kPlugCategGenerator = 11,
    kPlugCategMaxCount = 12
};

/** Values of effSetProcessPrecision. */
enum VstProcessPrecision
{
    kVstProcessPrecision32 = 0,
    kVstProcessPrecision64 = 1
};

/** The kinds of event in a block. */
enum VstEventTypes
{
    kVstMidiType = 1,
    kVstSysExType = 6
};

/** An event of any kind; type says which record it really is. */
struct VstEvent
{
    VstInt32 type;
    VstInt32 byteSize;
    VstInt32 deltaFrames;
    VstInt32 flags;
    char data[16];
};

/** The events of a block; the list is as long as numEvents says. */
struct VstEvents
{
    VstInt32 numEvents;
    VstIntPtr reserved;
    VstEvent* events[2];
};

/** A short MIDI message. */
struct VstMidiEvent
{
    VstInt32 type;
    VstInt32 byteSize;
    VstInt32 deltaFrames;
    VstInt32 flags;
    VstInt32 noteLength;
    VstInt32 noteOffset;
    char midiData[4];
    char detune;
    char noteOffVelocity;
    char reserved1;
    char reserved2;
};

/** A system-exclusive message. */
struct VstMidiSysexEvent
{
    VstInt32 type;
    VstInt32 byteSize;
    VstInt32 deltaFrames;
    VstInt32 flags;
    VstInt32 dumpBytes;
    VstIntPtr resvd1;
    char* sysexDump;
    VstIntPtr resvd2;
};

/** The name of a note, for effGetMidiKeyName. */
struct MidiKeyName
{
    VstInt32 thisProgramIndex;
    VstInt32 thisKeyNumber;
    char keyName[kVstMaxNameLen];
    VstInt32 reserved;
    VstInt32 flags;
};

/** The bits of VstTimeInfo::flags. */
enum VstTimeInfoFlags
{
    kVstTransportChanged = 1 << 0,
    kVstTransportPlaying = 1 << 1,
    kVstTransportCycleActive = 1 << 2,
    kVstTransportRecording = 1 << 3,
    kVstAutomationWriting = 1 << 6,
    kVstAutomationReading = 1 << 7,
    kVstNanosValid = 1 << 8,
    kVstPpqPosValid = 1 << 9,
    kVstTempoValid = 1 << 10,
    kVstBarsValid = 1 << 11,
    kVstCyclePosValid = 1 << 12,
    kVstTimeSigValid = 1 << 13,
    kVstSmpteValid = 1 << 14,
    kVstClockValid = 1 << 15
};

/** Values of VstTimeInfo::smpteFrameRate. */
enum VstSmpteFrameRate
{
    kVstSmpte24fps = 0,
    kVstSmpte25fps = 1,
    kVstSmpte2997fps = 2,
    kVstSmpte30fps = 3,
    kVstSmpte2997dfps = 4,
    kVstSmpte30dfps = 5,
    kVstSmpteFilm16mm = 6,
    kVstSmpteFilm35mm = 7,
    kVstSmpte239fps = 10,
    kVstSmpte249fps = 11,
    kVstSmpte599fps = 12,
    kVstSmpte60fps = 13
};

/** Where the host's transport stands: positions in samples or quarter notes, tempo in beats a minute. */
struct VstTimeInfo
{
    double samplePos;
    double sampleRate;
    double nanoSeconds;
    double ppqPos;
    double tempo;
    double barStartPos;
    double cycleStartPos;
    double cycleEndPos;
    VstInt32 timeSigNumerator;
    VstInt32 timeSigDenominator;
    VstInt32 smpteOffset;
    VstInt32 smpteFrameRate;
    VstInt32 samplesToNextClock;
    VstInt32 flags;
};

/** The bits of VstPinProperties::flags. */
enum VstPinPropertiesFlags
{
    kVstPinIsActive = 1 << 0,
    kVstPinIsStereo = 1 << 1,
    kVstPinUseSpeaker = 1 << 2
};

/** What the plug-in says of one channel. */
struct VstPinProperties
{
    char label[kVstMaxLabelLen];
    VstInt32 flags;
    VstInt32 arrangementType;
    char shortLabel[kVstMaxShortLabelLen];
    char future[48];
};

/** What one loudspeaker of an arrangement is. */
enum VstSpeakerType
{
    kSpeakerUndefined = 0x7fffffff,
    kSpeakerM = 0,
    kSpeakerL = 1,
    kSpeakerR = 2,
    kSpeakerC = 3,
    kSpeakerLfe = 4,
    kSpeakerLs = 5,
    kSpeakerRs = 6,
    kSpeakerLc = 7,
    kSpeakerRc = 8,
    kSpeakerS = 9,
    kSpeakerCs = kSpeakerS,
    kSpeakerSl = 10,
    kSpeakerSr = 11,
    kSpeakerTm = 12,
    kSpeakerTfl = 13,
    kSpeakerTfc = 14,
    kSpeakerTfr = 15,
    kSpeakerTrl = 16,
    kSpeakerTrc = 17,
    kSpeakerTrr = 18,
    kSpeakerLfe2 = 19
};

/** The layouts of channels that have a number. */
enum VstSpeakerArrangementType
{
    kSpeakerArrUserDefined = -2,
    kSpeakerArrEmpty = -1,
    kSpeakerArrMono = 0,
    kSpeakerArrStereo = 1,
    kSpeakerArrStereoSurround = 2,
    kSpeakerArrStereoCenter = 3,
    kSpeakerArrStereoSide = 4,
    kSpeakerArrStereoCLfe = 5,
    kSpeakerArr30Cine = 6,
    kSpeakerArr30Music = 7,
    kSpeakerArr31Cine = 8,
    kSpeakerArr31Music = 9,
    kSpeakerArr40Cine = 10,
    kSpeakerArr40Music = 11,
    kSpeakerArr41Cine = 12,
    kSpeakerArr41Music = 13,
    kSpeakerArr50 = 14,
    kSpeakerArr51 = 15,
    kSpeakerArr60Cine = 16,
    kSpeakerArr60Music = 17,
    kSpeakerArr61Cine = 18,
    kSpeakerArr61Music = 19,
    kSpeakerArr70Cine = 20,
    kSpeakerArr70Music = 21,
    kSpeakerArr71Cine = 22,
    kSpeakerArr71Music = 23,
    kSpeakerArr80Cine = 24,
    kSpeakerArr80Music = 25,
    kSpeakerArr81Cine = 26,
    kSpeakerArr81Music = 27,
    kSpeakerArr102 = 28
};

/** One loudspeaker: where it stands and what it is. */
struct VstSpeakerProperties
{
    float azimuth;
    float elevation;
    float radius;
    float reserved;
    char name[kVstMaxNameLen];
    VstInt32 type;
    char future[28];
};

/** A layout of channels, for effSetSpeakerArrangement; longer than eight records where numChannels says so. */
struct VstSpeakerArrangement
{
    VstInt32 type;
    VstInt32 numChannels;
    VstSpeakerProperties speakers[8];
};

static_assert (sizeof (VstEvent) == 32);
static_assert (offsetof (VstEvent, data) == 16);

static_assert (sizeof (VstEvents) == 32);
static_assert (offsetof (VstEvents, events) == 16);

static_assert (sizeof (VstMidiEvent) == 32);
static_assert (offsetof (VstMidiEvent, midiData) == 24);
static_assert (offsetof (VstMidiEvent, detune) == 28);

static_assert (sizeof (VstMidiSysexEvent) == 48);
static_assert (offsetof (VstMidiSysexEvent, dumpBytes) == 16);
static_assert (offsetof (VstMidiSysexEvent, sysexDump) == 32);

static_assert (sizeof (MidiKeyName) == 80);
static_assert (offsetof (MidiKeyName, keyName) == 8);

static_assert (sizeof (VstTimeInfo) == 88);
static_assert (offsetof (VstTimeInfo, samplePos) == 0);
static_assert (offsetof (VstTimeInfo, sampleRate) == 8);
static_assert (offsetof (VstTimeInfo, nanoSeconds) == 16);
static_assert (offsetof (VstTimeInfo, ppqPos) == 24);
static_assert (offsetof (VstTimeInfo, tempo) == 32);
static_assert (offsetof (VstTimeInfo, barStartPos) == 40);
static_assert (offsetof (VstTimeInfo, cycleStartPos) == 48);
static_assert (offsetof (VstTimeInfo, cycleEndPos) == 56);
static_assert (offsetof (VstTimeInfo, timeSigNumerator) == 64);
static_assert (offsetof (VstTimeInfo, timeSigDenominator) == 68);
static_assert (offsetof (VstTimeInfo, smpteOffset) == 72);
static_assert (offsetof (VstTimeInfo, smpteFrameRate) == 76);
static_assert (offsetof (VstTimeInfo, samplesToNextClock) == 80);
static_assert (offsetof (VstTimeInfo, flags) == 84);

static_assert (sizeof (VstPinProperties) == 128);
static_assert (offsetof (VstPinProperties, flags) == 64);
static_assert (offsetof (VstPinProperties, arrangementType) == 68);
static_assert (offsetof (VstPinProperties, shortLabel) == 72);
static_assert (offsetof (VstPinProperties, future) == 80);

static_assert (sizeof (VstSpeakerProperties) == 112);
static_assert (offsetof (VstSpeakerProperties, name) == 16);
static_assert (offsetof (VstSpeakerProperties, type) == 80);

static_assert (sizeof (VstSpeakerArrangement) == 904);
static_assert (offsetof (VstSpeakerArrangement, numChannels) == 4);
static_assert (offsetof (VstSpeakerArrangement, speakers) == 8);
