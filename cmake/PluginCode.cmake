# Programs that link the plug-in's own machine code: tests, benchmarks, measurements. JUCE's headers and settings
# come from the target itself, so that nothing is compiled a second time with other flags.
function (larkspire_link_plugin_code target)
    target_link_libraries (${target} PRIVATE Larkspire)
    target_include_directories (${target} PRIVATE $<TARGET_PROPERTY:Larkspire,INCLUDE_DIRECTORIES>)
    target_include_directories (${target} SYSTEM PRIVATE "${LARKSPIRE_JUCE}/modules")
    target_compile_definitions (${target} PRIVATE $<TARGET_PROPERTY:Larkspire,COMPILE_DEFINITIONS>)
endfunction ()
