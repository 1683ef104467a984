-- Run by ardour7-lua: makes a session of 48 kHz with one audio track that carries the plug-in, and saves it.
-- Arguments: the session's folder, channels of the track, type of the plug-in as Ardour names it, its name or id,
-- value of its first parameter, plug-in on, off or bypassed, frames to play.
local folder, channels, kind, name, value, state, frames = table.unpack (arg)
local rate = 48000

AudioEngine:set_backend ("None (Dummy)", "", "")
local session = assert (create_session (folder, "voice", rate), "no session")
local tracks = session:new_audio_track (tonumber (channels), 2, nil, 1, "voice", ARDOUR.PresentationInfo.max_order,
                                        ARDOUR.TrackMode.Normal, true)

-- A thread of Ardour's does this too, but now and then it misses a track, whose session would be silent.
local output, master = tracks:front():output(), session:master_out():input()

for channel = 0, 1 do
    if not output:nth (channel):connected() then output:nth (channel):connect (master:nth (channel):name()) end

    assert (output:nth (channel):connected(), "the track cannot be connected")
end

local plugin = ARDOUR.LuaAPI.new_plugin (session, name, ARDOUR.PluginType[kind], "")
assert (not plugin:isnil(), "Ardour knows no such plug-in")
assert (tracks:front():to_route():add_processor_by_index (plugin, 0, nil, true) == 0, "the track refused the plug-in")
assert (ARDOUR.LuaAPI.set_processor_param (plugin, 0, tonumber (value)), "the parameter cannot be set")

if state == "off" then plugin:to_insert():deactivate() end
if state == "bypassed" then plugin:to_insert():enable (false) end

assert (session:save_state ("", false, false, false, false, false) == 0, "the session cannot be saved")

-- What the interpreter still holds when it ends outlives the audio engine, and its end then crashes the program.
tracks, output, master, plugin = nil, nil, nil, nil
collectgarbage()
close_session()

-- No call that scripts have puts a recording on a track, so that the saved session is given one: a region that plays
-- channel1.wav, channel2.wav from the very start and without fades. The session ends where the region does.
local path = folder .. "/voice.ardour"
local file = assert (io.open (path))
local text = file:read ("a")
file:close()

local function replace_once (pattern, replacement)
    local count
    text, count = text:gsub (pattern, replacement)
    assert (count == 1, pattern .. " is in the session " .. count .. " times")
end

local length = "a" .. tonumber (frames) * 282240000 // rate -- in the unit that Ardour counts time in
local sources, links = "", ""

for channel = 1, tonumber (channels) do
    local id = 9000 + channel
    sources = sources .. ('<Source id="%d" name="channel%d.wav" type="audio" channel="0" flags="" take-id="" origin=""'
                          .. ' gain="1"/>'):format (id, channel)
    links = links .. (' source-%d="%d" master-source-%d="%d"'):format (channel - 1, id, channel - 1, id)
end

local region = '<Region id="9100" name="voice" type="audio" channels="' .. channels .. '"' .. links
    .. ' start="a0" length="' .. length .. '@a0" ancestral-start="a0" ancestral-length="' .. length .. '@a0"'
    .. ' sync-position="a0" stretch="1" shift="1" scale-amplitude="1" layering-index="0" opaque="1" muted="0"'
    .. ' locked="0" video-locked="0" position-locked="0" automatic="0" whole-file="0" import="0" external="0"'
    .. ' sync-marked="0" left-of-split="0" right-of-split="0" hidden="0" valid-transients="0" envelope-active="0"'
    .. ' default-fade-in="0" default-fade-out="0" fade-in-active="0" fade-out-active="0">'
    .. '<Envelope default="yes"/><FadeIn default="yes"/><FadeOut default="yes"/></Region>'
local range = '<Location id="9200" name="session" start="a0" end="' .. length
    .. '" flags="IsSessionRange" locked="0" timestamp="0" cue="0"/>'

replace_once ("<Sources/>", "<Sources>" .. sources .. "</Sources>")
replace_once ('(<Playlist id="%d+" name="voice"[^>]-)/>', "%1>" .. region .. "</Playlist>")
replace_once ("<Locations/>", "<Locations>" .. range .. "</Locations>")

file = assert (io.open (path, "w"))
file:write (text)
file:close()
quit()
