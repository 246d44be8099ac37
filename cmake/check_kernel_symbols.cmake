# cmake -DNM= -DOBJDUMP= -DOBJECTS=a;b -P: fails if a kernel object defines anything but its tables.
# A weak or a global function compiled for AVX2 could be linked in place of the same function
# elsewhere and crash an older processor.
execute_process(COMMAND ${NM} --defined-only --extern-only -C ${OBJECTS}
    OUTPUT_VARIABLE out COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE "\n" ";" lines "${out}")
set(tables 0)
foreach(line IN LISTS lines)
    if(line MATCHES "^[0-9a-f]+ [A-Za-z] ")
        if(line MATCHES "tq::isa_[a-z0-9]+::[a-zA-Z0-9]+Kernels$")
            math(EXPR tables "${tables} + 1")
        else()
            message(SEND_ERROR "kernel object exports: ${line}")
        endif()
    endif()
endforeach()
list(LENGTH OBJECTS objects)
if(tables LESS objects)
    message(SEND_ERROR "${objects} kernel objects, but only ${tables} tables")
endif()

# A fused multiply-add rounds once where the contract rounds twice. The flags forbid it; some
# compilers have emitted it all the same.
execute_process(COMMAND ${OBJDUMP} -d --no-show-raw-insn ${OBJECTS}
    OUTPUT_VARIABLE code COMMAND_ERROR_IS_FATAL ANY)
if(code MATCHES "[ \t](vfn?m(add|sub)[a-z0-9]*|fn?m(add|sub|la|ls))[ \t]")
    message(SEND_ERROR "kernel object has a fused multiply-add: ${CMAKE_MATCH_1}")
endif()
message(STATUS "${objects} kernel objects, ${tables} tables, no fused multiply-add")
