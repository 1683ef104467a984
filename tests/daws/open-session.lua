-- Run by ardour7-lua: opens a session that make-session.lua made and says what it finds of the plug-in there.
-- Argument: the session's folder.
AudioEngine:set_backend ("None (Dummy)", "", "")
local session = assert (load_session (arg[1], "voice"), "the session does not open")
local plugin = session:route_by_name ("voice"):nth_plugin (0)
assert (not plugin:isnil(), "the plug-in is gone")

local insert = plugin:to_insert()
local value = ARDOUR.LuaAPI.get_processor_param (plugin, 0)
local first = insert:plugin (0):nth_parameter (0, false) -- LV2 counts the ports for audio too
print ("name: " .. plugin:display_name())
print ("parameters: " .. insert:plugin (0):parameter_count())
print ("parameter: " .. insert:plugin (0):parameter_label (first))
print (("value: %.6f"):format (value))
print ("active: " .. tostring (plugin:active()))
print ("enabled: " .. tostring (insert:enabled()))

-- What the interpreter still holds when it ends outlives the audio engine, and its end then crashes the program.
plugin, insert = nil, nil
collectgarbage()
close_session()
quit()
