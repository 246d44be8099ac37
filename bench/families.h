#pragma once

// What main.cpp registers, in this order.

namespace tqbench {

void AddMemcpy();
void AddLuminance();
void AddPacked422();
void AddPlanar422();
void AddDeep();
void AddHsv();
void AddPlanes();
void AddImageMemory();
void AddMorph();
void AddLabelling();
void AddFilter();
void AddWavelet();
void AddZoom();
void AddPool();

}  // namespace tqbench
