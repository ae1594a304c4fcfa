# A video BIOS that does nothing but VBE/DDC, and tells its units apart: units 0 and 1 have the EDIDs 0.bin and
# 1.bin, of one block and of two; every other unit, and every other block, fails with AX = 0x014F.
# Assembled with NEVER_RETURNS defined, it never comes back from a read.
        .code16
        .set SIZE, 2048
        .set BLOCK, 128
        .set READ_EDID, 0x4F15          # VBE function 15h, with BL = 1
        .set DONE, 0x004F
        .set FAILED, 0x014F

rom:    .byte 0x55, 0xAA                # the signature of an option ROM, its size in units of 512 bytes,
        .byte SIZE / 512
        jmp init                        # and its entry at offset 3
        .org 0x18
        .word pci - rom

        .balign 4
pci:    .ascii "PCIR"                   # what a PCI option ROM says of itself
        .word 0x1234, 0x1111            # QEMU's standard VGA
        .word 0, 0x18
        .byte 0
        .byte 0x00, 0x00, 0x03          # a VGA controller
        .word SIZE / 512
        .word 1
        .byte 0x00, 0x80                # code for PC-AT; the last image
        .word 0

init:   push %ds
        push %ax
        xor %ax, %ax
        mov %ax, %ds
        movw $video, 4 * 0x10           # the vector of interrupt 0x10
        mov %cs, 4 * 0x10 + 2
        pop %ax
        pop %ds
        lret

# In: CX the unit, DX the block, ES:DI a buffer of 128 bytes.
video:  cmp $READ_EDID, %ax
        jne return
        cmp $1, %bl
        jne return
.ifdef NEVER_RETURNS
        jmp .
.endif
        mov $FAILED, %ax
        cmp $1, %cx
        ja return                       # only units 0 and 1
        cmp %cx, %dx
        ja return                       # unit 0 has one block, unit 1 has two
        push %cx
        push %si
        push %di
        imul $BLOCK, %dx, %si           # unit1 lies one block after unit0
        shl $7, %cx
        add %cx, %si
        add $unit0, %si
        mov $BLOCK, %cx
        cld
        rep movsb %cs:(%si), %es:(%di)
        pop %di
        pop %si
        pop %cx
        mov $DONE, %ax
return: iret

unit0:  .incbin "0.bin", 0, BLOCK
unit1:  .incbin "1.bin", 0, 2 * BLOCK
        .org SIZE - 1, 0
checksum: .byte 0                       # made so that the bytes add up to 0
