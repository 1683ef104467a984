// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <functional>

/** JUCE's windows and messages for as long as a test lives. */
struct GuiTest
{
    juce::ScopedJuceInitialiser_GUI juceGui;
};

/** What a function draws on an image of one colour. Shadows and letters are drawn by JUCE's own renderer, as
    in a window. */
inline juce::Image
drawn (int width, int height, juce::Colour background, const std::function<void (juce::Graphics&)>& draw)
{
    juce::Image image (juce::Image::ARGB, width, height, true, juce::SoftwareImageType());
    juce::Graphics g (image);
    g.fillAll (background);
    draw (g);
    return image;
}

/** Whether two images have the same pixels, the second one moved by an offset; what is moved out is not looked at. */
inline bool sameWhenMoved (const juce::Image& original, const juce::Image& moved, juce::Point<int> offset)
{
    for (int y = 0; y < original.getHeight(); ++y)
        for (int x = 0; x < original.getWidth(); ++x)
            if (const auto place = juce::Point<int> (x, y) + offset; moved.getBounds().contains (place))
                if (original.getPixelAt (x, y) != moved.getPixelAt (place.x, place.y))
                    return false;

    return true;
}

/** Whether two images of one size have the same pixels. */
inline bool same (const juce::Image& a, const juce::Image& b)
{
    return a.getBounds() == b.getBounds() && sameWhenMoved (a, b, {});
}

/** The smallest rectangle that holds all pixels of another colour than the background. */
inline juce::Rectangle<int> inked (const juce::Image& image, juce::Colour background)
{
    juce::Rectangle<int> bounds;

    for (int y = 0; y < image.getHeight(); ++y)
        for (int x = 0; x < image.getWidth(); ++x)
            if (image.getPixelAt (x, y) != background)
                bounds = bounds.isEmpty() ? juce::Rectangle<int> (x, y, 1, 1) : bounds.getUnion ({ x, y, 1, 1 });

    return bounds;
}
