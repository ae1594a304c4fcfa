# Prints each call of the plug-in to its host and to the LRMI library, as it happens:
#   gdb -q -batch -x tools/host-calls.gdb --args build/debug/bin/displayinfo --machine examples/office --log-level error
# Needs the debug build (tools/build debug displayinfo): names and values come from its debug information.
set breakpoint pending on
set pagination off
dprintf TEmbeddedHost::FileExists,"FileExists %s\n", path._M_dataplus._M_p
dprintf TEmbeddedHost::CaptureFile,"CaptureFile %s\n", path._M_dataplus._M_p
dprintf TEmbeddedHost::GetSystemName,"GetSystemName\n"
dprintf TEmbeddedHost::GetSystemCreationClassName,"GetSystemCreationClassName\n"
dprintf TEmbeddedHost::GetRunningTypeOnXen,"GetRunningTypeOnXen\n"
dprintf TCimStore::GetClass,"GetClass %s\n", className._M_dataplus._M_p
dprintf TStoredClass::GetName,"GetName of %s\n", m_name._M_dataplus._M_p
dprintf TStoredClass::CreateInstance,"CreateInstance of %s\n", m_name._M_dataplus._M_p
dprintf TStoredClass::EnumerateInstances,"EnumerateInstances of %s\n", m_name._M_dataplus._M_p
dprintf TStoredInstance::GetProperty,"GetProperty %s\n", name._M_dataplus._M_p
dprintf TStoredInstance::SetProperty,"SetProperty %s\n", name._M_dataplus._M_p
dprintf TStoredInstance::Commit,"Commit\n"
dprintf TLog::Write,"log: %s\n", message._M_dataplus._M_p
dprintf LRMI_init,"LRMI_init\n"
dprintf LRMI_alloc_real,"LRMI_alloc_real %d\n", size
dprintf LRMI_int,"LRMI_int 0x%x: unit %u, block %u\n", interrupt, registers->ecx, registers->edx
dprintf LRMI_free_real,"LRMI_free_real\n"
dprintf LRMI_deInit,"LRMI_deInit\n"
run
