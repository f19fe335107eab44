#pragma once
// Front door of the annotation panel and of the program that draws on the customer's screen.

#include "src/Annotation/annotationLayout.h"
#include "src/Annotation/annotationPanel.h"
#include "src/Annotation/annotationPipes.h"
#include "src/Annotation/annotationProgram.h"
