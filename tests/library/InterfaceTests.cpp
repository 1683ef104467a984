// SPDX-License-Identifier: AGPL-3.0-only
// What a host reads of the built library through the raw interface.
#include "support/RawHost.h"

#include <gtest/gtest.h>

namespace
{
TEST (Interface, ShowsTheEffectRecord)
{
    RawHost host;
    const auto& effect = host.effect();
    EXPECT_EQ (effect.magic, Vst2::kEffectMagic);
    EXPECT_EQ (effect.uniqueID, ('T' << 24) + ('m' << 16) + ('w' << 8) + 'q');
    EXPECT_EQ (effect.version, 65536);
    EXPECT_EQ (effect.flags, 561);
    EXPECT_EQ (effect.numPrograms, 1);
    EXPECT_EQ (effect.numParams, 1);
    EXPECT_EQ (effect.numInputs, 2);
    EXPECT_EQ (effect.numOutputs, 2);
    EXPECT_EQ (effect.initialDelay, 0);
}

TEST (Interface, ShowsItsNamesAndVersions)
{
    RawHost host;
    EXPECT_EQ (host.text (Vst2::effGetEffectName), "Quendal Larkspire");
    EXPECT_EQ (host.text (Vst2::effGetProductString), "Quendal Larkspire");
    EXPECT_EQ (host.text (Vst2::effGetVendorString), "Quendal");
    EXPECT_EQ (host.dispatch (Vst2::effGetVendorVersion), 65536);
    EXPECT_EQ (host.dispatch (Vst2::effGetVstVersion), 2400);
    EXPECT_EQ (host.dispatch (Vst2::effGetPlugCategory), Vst2::kPlugCategEffect);
}

TEST (Interface, GivesNoInstanceToAHostWithoutAVersion)
{
    const RawHost host;
    const auto mute =
        [] (Vst2::AEffect*, Vst2::VstInt32, Vst2::VstInt32, Vst2::VstIntPtr, void*, float) -> Vst2::VstIntPtr
    { return 0; };
    EXPECT_EQ (host.entryPoint() (mute), nullptr);
}

// Hosts send numbers; a wrong one in our header would be wrong on both sides of every other test.
TEST (Interface, UsesTheNumbersThatHostsUse)
{
    EXPECT_EQ (static_cast<int> (Vst2::effSetBypass), 44);
    EXPECT_EQ (static_cast<int> (Vst2::effGetChunk), 23);
    EXPECT_EQ (static_cast<int> (Vst2::effSetChunk), 24);
    EXPECT_EQ (static_cast<int> (Vst2::effSetSpeakerArrangement), 42);
    EXPECT_EQ (static_cast<int> (Vst2::audioMasterAutomate), 0);
    EXPECT_EQ (static_cast<int> (Vst2::audioMasterIOChanged), 13);
}

TEST (Interface, NamesItsOneParameter)
{
    RawHost host;
    EXPECT_EQ (host.text (Vst2::effGetParamName), "Mode");
    EXPECT_EQ (host.text (Vst2::effGetParamLabel), "");
    EXPECT_EQ (host.dispatch (Vst2::effCanBeAutomated, 0), 1);
    EXPECT_EQ (host.dispatch (Vst2::effCanBeAutomated, 1), 0);
    EXPECT_EQ (host.getParameter(), knobPosition (2));
}

TEST (Interface, ShowsTheTextOfEveryPosition)
{
    RawHost host;
    const char* texts[] = { "bypass", "Gentle", "Medium", "Powerful", "", "", "", "", "", "" };

    for (int position = 0; position < 10; ++position)
    {
        host.setParameter (knobPosition (position));
        EXPECT_EQ (host.text (Vst2::effGetParamDisplay), texts[position]) << position;
    }
}

TEST (Interface, TakesParametersFromZeroToOne)
{
    RawHost host;

    for (const auto& [sent, kept] :
         { std::pair { 0.5f, 0.5f }, { 1.5f, 1.0f }, { -1.0f, 0.0f }, { 1.0f / 3.0f, 1.0f / 3.0f } })
    {
        host.setParameter (sent);
        EXPECT_EQ (host.getParameter(), kept);
    }
}

TEST (Interface, ReadsTypedTextAsANumber)
{
    RawHost host;
    char number[] = "0.3333";
    EXPECT_EQ (host.dispatch (Vst2::effString2Parameter, 0, 0, number), 1);
    EXPECT_FLOAT_EQ (host.getParameter(), 0.3333f);
    char name[] = "Gentle";
    host.dispatch (Vst2::effString2Parameter, 0, 0, name);
    EXPECT_EQ (host.getParameter(), 0.0f) << "names are not looked up";
}

TEST (Interface, HasOneProgramWithoutAName)
{
    RawHost host;
    EXPECT_EQ (host.dispatch (Vst2::effGetProgram), 0);
    host.dispatch (Vst2::effSetProgram, 0, 5);
    EXPECT_EQ (host.dispatch (Vst2::effGetProgram), 0);
    char name[] = "Name";
    host.dispatch (Vst2::effSetProgramName, 0, 0, name);
    EXPECT_EQ (host.text (Vst2::effGetProgramName), "");
    EXPECT_EQ (host.text (Vst2::effGetProgramNameIndexed, 0), "");
    char unchanged[] = "unchanged";
    EXPECT_EQ (host.dispatch (Vst2::effGetProgramNameIndexed, 1, 0, unchanged), 0);
    EXPECT_STREQ (unchanged, "unchanged");
}

TEST (Interface, HasNoTailAndNoMidi)
{
    RawHost host;
    host.start (48000.0f);
    EXPECT_EQ (host.dispatch (Vst2::effGetTailSize), 0);
    EXPECT_EQ (host.dispatch (Vst2::effGetNumMidiInputChannels), 0);
    EXPECT_EQ (host.dispatch (Vst2::effGetNumMidiOutputChannels), 0);
    EXPECT_EQ (host.dispatch (Vst2::effKeysRequired), 0);
}

struct CanDo
{
    const char* what;
    int answer;
};

class InterfaceCanDo : public testing::TestWithParam<CanDo>
{
};

TEST_P (InterfaceCanDo, AnswersAsAnAudioEffect)
{
    RawHost host;
    std::string what = GetParam().what;
    EXPECT_EQ (static_cast<int> (host.dispatch (Vst2::effCanDo, 0, 0, what.data())), GetParam().answer) << what;
}

INSTANTIATE_TEST_SUITE_P (Questions,
                          InterfaceCanDo,
                          testing::Values (CanDo { "receiveVstEvents", -1 },
                                           CanDo { "receiveVstMidiEvent", -1 },
                                           CanDo { "sendVstEvents", -1 },
                                           CanDo { "sendVstMidiEvent", -1 },
                                           CanDo { "receiveVstTimeInfo", 1 },
                                           CanDo { "bypass", 1 },
                                           CanDo { "MPE", 0 },
                                           CanDo { "no such thing", 0 }));

TEST (Interface, AcceptsMonoAndStereoOnly)
{
    struct Layout
    {
        Vst2::VstInt32 type;
        Vst2::VstInt32 channels;
    };
    const Layout layouts[] = { { Vst2::kSpeakerArrEmpty, 0 },
                               { Vst2::kSpeakerArrMono, 1 },
                               { Vst2::kSpeakerArrStereo, 2 },
                               { Vst2::kSpeakerArr30Cine, 3 },
                               { Vst2::kSpeakerArr51, 6 } };

    for (const auto& in : layouts)
        for (const auto& out : layouts)
        {
            RawHost host;
            const bool wanted = in.channels == out.channels && (in.channels == 1 || in.channels == 2);
            EXPECT_EQ (host.setLayout (in.type, in.channels, out.type, out.channels), wanted)
                << in.channels << " to " << out.channels;
        }
}

TEST (Interface, RefusesALayoutThatContradictsItself)
{
    RawHost host;
    EXPECT_FALSE (host.setLayout (Vst2::kSpeakerArrMono, 2, Vst2::kSpeakerArrMono, 2));
    EXPECT_FALSE (host.setLayout (Vst2::kSpeakerArrStereo, 1, Vst2::kSpeakerArrStereo, 1));
}

TEST (Interface, TellsTheLayoutInForce)
{
    RawHost host;
    Vst2::VstSpeakerArrangement* input = nullptr;
    Vst2::VstSpeakerArrangement* output = nullptr;

    for (const bool mono : { true, false })
    {
        host.start (48000.0f, 512, mono);
        ASSERT_EQ (
            host.dispatch (Vst2::effGetSpeakerArrangement, 0, reinterpret_cast<Vst2::VstIntPtr> (&input), &output), 1);
        EXPECT_EQ (input->type, mono ? Vst2::kSpeakerArrMono : Vst2::kSpeakerArrStereo);
        EXPECT_EQ (output->numChannels, mono ? 1 : 2);
        EXPECT_EQ (output->speakers[0].type, mono ? Vst2::kSpeakerC : Vst2::kSpeakerL);
        host.suspend();
    }
}

TEST (Interface, DescribesItsPins)
{
    RawHost host;
    struct Pin
    {
        Vst2::VstInt32 opcode;
        int index;
        const char* label;
        int flags;
    };
    const int active = Vst2::kVstPinIsActive | Vst2::kVstPinUseSpeaker;

    for (const auto& pin : { Pin { Vst2::effGetInputProperties, 0, "Input L", active | Vst2::kVstPinIsStereo },
                             Pin { Vst2::effGetInputProperties, 1, "Input R", active },
                             Pin { Vst2::effGetOutputProperties, 0, "Output L", active | Vst2::kVstPinIsStereo },
                             Pin { Vst2::effGetOutputProperties, 1, "Output R", active } })
    {
        Vst2::VstPinProperties properties {};
        ASSERT_EQ (host.dispatch (pin.opcode, pin.index, 0, &properties), 1);
        EXPECT_STREQ (properties.label, pin.label);
        EXPECT_EQ (properties.flags, pin.flags) << pin.label;
        EXPECT_EQ (properties.arrangementType, Vst2::kSpeakerArrStereo);
    }

    Vst2::VstPinProperties none {};
    EXPECT_EQ (host.dispatch (Vst2::effGetInputProperties, 2, 0, &none), 0);
}

TEST (Interface, DescribesItsPinsOnAMonoLayout)
{
    RawHost host;
    host.start (48000.0f, 512, true);
    Vst2::VstPinProperties properties {};
    ASSERT_EQ (host.dispatch (Vst2::effGetOutputProperties, 0, 0, &properties), 1);
    EXPECT_STREQ (properties.label, "Output");
    EXPECT_EQ (properties.flags, Vst2::kVstPinIsActive | Vst2::kVstPinUseSpeaker);
    EXPECT_EQ (properties.arrangementType, Vst2::kSpeakerArrMono);
    EXPECT_EQ (host.dispatch (Vst2::effGetOutputProperties, 1, 0, &properties), 0);
}

TEST (Interface, KeepsToSinglePrecision)
{
    RawHost host;
    EXPECT_EQ (host.effect().flags & Vst2::effFlagsCanDoubleReplacing, 0);
}
} // namespace
