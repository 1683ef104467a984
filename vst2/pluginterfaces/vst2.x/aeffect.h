// SPDX-License-Identifier: AGPL-3.0-only
// The VST 2.4 interface, first half: the effect record, the callbacks and the opcodes from host to plug-in.
//
// Written for this project: no package ships a description of the interface with all numbers and layouts right, and one
// wrong number costs real behaviour in hosts. The names are those that JUCE's wrapper and host expect. JUCE includes
// this file inside a namespace of its own, so nothing else is included from here: <cstddef> must come first.
#pragma once

#ifndef offsetof
    #error "include <cstddef> ahead of the VST 2 interface"
#endif

#if defined(_WIN32)
    #define VSTCALLBACK __cdecl
#else
    #define VSTCALLBACK
#endif

using VstInt32 = int;
using VstIntPtr = decltype (static_cast<char*> (nullptr) - static_cast<char*> (nullptr));

struct AEffect;

/** The host's side: opcodes AudioMasterOpcodes and AudioMasterOpcodesX. */
using audioMasterCallback =
    VstIntPtr (VSTCALLBACK*) (AEffect*, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt);

/** The plug-in's side: opcodes AEffectOpcodes and AEffectXOpcodes. */
using AEffectDispatcherProc =
    VstIntPtr (VSTCALLBACK*) (AEffect*, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt);

using AEffectProcessProc = void (VSTCALLBACK*) (AEffect*, float** inputs, float** outputs, VstInt32 sampleFrames);
using AEffectProcessDoubleProc = void (VSTCALLBACK*) (AEffect*,
                                                      double** inputs,
                                                      double** outputs,
                                                      VstInt32 sampleFrames);
using AEffectSetParameterProc = void (VSTCALLBACK*) (AEffect*, VstInt32 index, float value);
using AEffectGetParameterProc = float (VSTCALLBACK*) (AEffect*, VstInt32 index);

/** 'VstP', the value of AEffect::magic. */
constexpr VstInt32 kEffectMagic = 0x56737450;

/** What a plug-in gives its host: its counts, its flags and the way in. */
struct AEffect
{
    VstInt32 magic;
    AEffectDispatcherProc dispatcher;
    AEffectProcessProc process;
    AEffectSetParameterProc setParameter;
    AEffectGetParameterProc getParameter;
    VstInt32 numPrograms;
    VstInt32 numParams;
    VstInt32 numInputs;
    VstInt32 numOutputs;
    VstInt32 flags;
    VstIntPtr resvd1;
    VstIntPtr resvd2;
    VstInt32 initialDelay;
    VstInt32 realQualities;
    VstInt32 offQualities;
    float ioRatio;
    void* object;
    void* user;
    VstInt32 uniqueID;
    VstInt32 version;
    AEffectProcessProc processReplacing;
    AEffectProcessDoubleProc processDoubleReplacing;
    char future[56];
};

/** The bits of AEffect::flags. */
enum VstAEffectFlags
{
    effFlagsHasEditor = 1 << 0,
    effFlagsCanReplacing = 1 << 4,
    effFlagsProgramChunks = 1 << 5,
    effFlagsIsSynth = 1 << 8,
    effFlagsNoSoundInStop = 1 << 9,
    effFlagsCanDoubleReplacing = 1 << 12
};

/** Host to plug-in, the opcodes of the interface's first version. */
enum AEffectOpcodes
{
    effOpen = 0,
    effClose = 1,
    effSetProgram = 2,
    effGetProgram = 3,
    effSetProgramName = 4,
    effGetProgramName = 5,
    effGetParamLabel = 6,
    effGetParamDisplay = 7,
    effGetParamName = 8,
    effSetSampleRate = 10,
    effSetBlockSize = 11,
    effMainsChanged = 12,
    effEditGetRect = 13,
    effEditOpen = 14,
    effEditClose = 15,
    effEditIdle = 19,
    effEditTop = 20,
    effIdentify = 22,
    effGetChunk = 23,
    effSetChunk = 24
};

/** The editor's rectangle, in pixels. */
struct ERect
{
    short top;
    short left;
    short bottom;
    short right;
};

/** Lengths of texts, in bytes without the closing zero. Hosts reserve more than the names say. */
enum VstStringConstants
{
    kVstMaxProgNameLen = 24,
    kVstMaxParamStrLen = 8,
    kVstMaxVendorStrLen = 64,
    kVstMaxProductStrLen = 64,
    kVstMaxEffectNameLen = 32
};

static_assert (sizeof (VstIntPtr) == sizeof (void*));
static_assert (sizeof (ERect) == 8);

// The offsets of a 64-bit process; there is no 32-bit build.
static_assert (sizeof (void*) == 8);
static_assert (sizeof (AEffect) == 192);
static_assert (offsetof (AEffect, magic) == 0);
static_assert (offsetof (AEffect, dispatcher) == 8);
static_assert (offsetof (AEffect, process) == 16);
static_assert (offsetof (AEffect, setParameter) == 24);
static_assert (offsetof (AEffect, getParameter) == 32);
static_assert (offsetof (AEffect, numPrograms) == 40);
static_assert (offsetof (AEffect, numParams) == 44);
static_assert (offsetof (AEffect, numInputs) == 48);
static_assert (offsetof (AEffect, numOutputs) == 52);
static_assert (offsetof (AEffect, flags) == 56);
static_assert (offsetof (AEffect, resvd1) == 64);
static_assert (offsetof (AEffect, resvd2) == 72);
static_assert (offsetof (AEffect, initialDelay) == 80);
static_assert (offsetof (AEffect, realQualities) == 84);
static_assert (offsetof (AEffect, offQualities) == 88);
static_assert (offsetof (AEffect, ioRatio) == 92);
static_assert (offsetof (AEffect, object) == 96);
static_assert (offsetof (AEffect, user) == 104);
static_assert (offsetof (AEffect, uniqueID) == 112);
static_assert (offsetof (AEffect, version) == 116);
static_assert (offsetof (AEffect, processReplacing) == 120);
static_assert (offsetof (AEffect, processDoubleReplacing) == 128);
static_assert (offsetof (AEffect, future) == 136);
